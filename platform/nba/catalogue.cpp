#include "nba/nba.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nl_types.h>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view CATALOGUE_NAME = "sna.cat";
constexpr std::string_view DEFAULT_PATH = TESSALY_PREFIX "/lib/nls/msg/%L/%N";

// A locale name is language[_territory][.codeset][@modifier].
std::string_view language_of(std::string_view locale) {
    return locale.substr(0, locale.find_first_of("_.@"));
}

std::string_view part_of(std::string_view locale, char separator, std::string_view ends) {
    const std::size_t start = locale.find(separator);
    if (start == std::string_view::npos) {
        return {};
    }
    locale.remove_prefix(start + 1);
    return locale.substr(0, locale.find_first_of(ends));
}

// The file that one template of a search path means for a locale.
std::string expand(std::string_view pattern, std::string_view locale) {
    std::string file;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%' || i + 1 == pattern.size()) {
            file += pattern[i];
            continue;
        }
        switch (pattern[++i]) {
        case 'N':
            file += CATALOGUE_NAME;
            break;
        case 'L':
            file += locale;
            break;
        case 'l':
            file += language_of(locale);
            break;
        case 't':
            file += part_of(locale, '_', ".@");
            break;
        case 'c':
            file += part_of(locale, '.', "@");
            break;
        case '%':
            file += '%';
            break;
        }
    }
    if (file.empty()) {
        file = CATALOGUE_NAME;
    }
    return file.find('/') == std::string::npos ? "./" + file
                                               : file; // a name without "/" would be searched
}

// catgets trusts its file, and a damaged one could crash the program. This is what it relies on: a
// header of magic number, hash table width and depth; the table of {set, message, offset} in both
// byte orders; texts that end within the file.
bool is_whole(const std::string& file) {
    constexpr NB_ULONG magic = 0x960408de;
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    const auto word = [&](std::size_t index) {
        NB_ULONG value;
        std::memcpy(&value, bytes.data() + index * sizeof value, sizeof value);
        return value;
    };
    constexpr std::size_t header = 3; // words
    if (bytes.size() < header * sizeof(NB_ULONG) || word(0) != magic || bytes.back() != '\0') {
        return false;
    }
    const std::size_t rows = std::size_t{word(1)} * word(2);
    const std::size_t table = 3 * rows; // words
    if (rows == 0 || rows > bytes.size() ||
        bytes.size() <= (header + 2 * table) * sizeof(NB_ULONG)) {
        return false;
    }
    const std::size_t texts = bytes.size() - (header + 2 * table) * sizeof(NB_ULONG);
    for (std::size_t row = 0; row < rows; ++row) {
        if (word(header + 3 * row) != 0 && word(header + 3 * row + 2) >= texts) {
            return false;
        }
    }
    return true;
}

// Opens the first file of a search path (templates separated by ":") that is a catalogue.
bool open_in_path(std::string_view path, std::string_view locale, NBA_CATALOGUE* catalogue) {
    while (true) {
        const std::size_t end = path.find(':');
        const std::string file = expand(path.substr(0, end), locale);
        const nl_catd found =
            is_whole(file) ? catopen(file.c_str(), 0) : reinterpret_cast<nl_catd>(-1);
        if (found != reinterpret_cast<nl_catd>(-1)) {
            *catalogue = reinterpret_cast<NBA_CATALOGUE>(found);
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        path.remove_prefix(end + 1);
    }
}

bool open_for(std::string_view locale, std::string_view path, NBA_CATALOGUE* catalogue) {
    return (!path.empty() && open_in_path(path, locale, catalogue)) ||
           open_in_path(DEFAULT_PATH, locale, catalogue);
}

// A name with "/" could lead anywhere.
bool names_language(std::string_view locale) {
    return !locale.empty() && locale != "C" && locale != "POSIX" &&
           locale.find('/') == std::string_view::npos;
}

std::string_view text_or_empty(const char* text) {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

} // namespace

int v0_initialise_message_catalog(NBA_CATALOGUE* catalogue) {
    *catalogue = -1;
    const std::string_view path = text_or_empty(std::getenv("NLSPATH"));
    // A catalogue in the user's language, wherever it is, goes before one in the language of the C
    // locale. Before setlocale was called only LANG tells the language.
    for (const std::string_view locale : {text_or_empty(std::setlocale(LC_MESSAGES, nullptr)),
                                          text_or_empty(std::getenv("LANG"))}) {
        if (names_language(locale) && open_for(locale, path, catalogue)) {
            return 0;
        }
    }
    if (open_for("C", path, catalogue)) {
        return 0;
    }
    return 1;
}

void v0_get_message(int set, int number, const char** text, NBA_CATALOGUE catalogue) {
    static const char missing[] = ""; // told by its address from a text that is empty
    *text = missing;
    if (catalogue != -1) {
        *text = catgets(reinterpret_cast<nl_catd>(catalogue), set, number, missing);
    }
    if (*text == missing) {
        *text = nullptr;
    }
}

void v0_close_message_catalog(NBA_CATALOGUE* catalogue) {
    if (*catalogue != -1) {
        catclose(reinterpret_cast<nl_catd>(*catalogue));
        *catalogue = -1;
    }
}
