#include "shell/messages.h"

#include "common/alloc.h"
#include "shell/exit_record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

const char* gvga_messages[VGA_MESSAGE_COUNT];
char* gvga_message_memory;
NBA_CATALOGUE gvga_catalog = -1;
NB_LONG gvga_setid = -1;

namespace {

constexpr NB_ULONG catalogue_problem = 0x40020005;
constexpr const char* catalogue_path = "/opt/kordia/sna/lib/nls/msg/%L/sna.cat";
constexpr std::size_t block_step = 4096;
constexpr int max_arguments = 11;
constexpr int VGA_FORMAT_LEN = 4; // longest type name and its terminator

enum class SOURCE : NB_BYTE { INTEGER, STRING, FIELD };

struct FORMAT_ROW {
    std::string_view name;
    SOURCE source;
    const char* print; // of an integer
    NB_ULONG mask;     // what of it counts
    bool ebcdic;       // of a field
    bool strip;        // trailing blanks go, instead of padding to the full length
};

constexpr FORMAT_ROW formats[] = {
    {"c", SOURCE::INTEGER, "%c", 0xFFFFFFFF, false, false},
    {"b", SOURCE::INTEGER, "%2.2x", 0xFF, false, false},
    {"s", SOURCE::STRING, nullptr, 0, false, false},
    {"ca", SOURCE::FIELD, nullptr, 0, false, false},
    {"i", SOURCE::INTEGER, "%u", 0xFFFF, false, false},
    {"x", SOURCE::INTEGER, "0x%4.4x", 0xFFFF, false, false},
    {"l", SOURCE::INTEGER, "%u", 0xFFFFFFFF, false, false},
    {"lx", SOURCE::INTEGER, "0x%8.8x", 0xFFFFFFFF, false, false},
    {"ea", SOURCE::FIELD, nullptr, 0, true, false},
    {"cs", SOURCE::FIELD, nullptr, 0, false, true},
    {"es", SOURCE::FIELD, nullptr, 0, true, true},
};

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// The converted arguments of one call. What no longer fits is cut.
class WORK_AREA {
public:
    void add_integer(const FORMAT_ROW& format, NB_ULONG value) {
        char text[16];
        const int length = std::snprintf(text, sizeof text, format.print, value & format.mask);
        append(text, static_cast<std::size_t>(length));
        finish();
    }

    void add_string(const char* text) {
        if (text != nullptr) {
            append(text, std::strlen(text));
        }
        finish();
    }

    void add_field(const FORMAT_ROW& format, std::size_t length, const char* field) {
        char* start = position();
        length = std::min(length, room());
        const std::size_t used = field != nullptr ? strnlen(field, length) : 0;
        if (used != 0) {
            std::memcpy(start, field, used);
        }
        if (format.ebcdic) {
            nba_ebcdic_to_local(start, used);
        }
        std::memset(start + used, ' ', length - used);
        end_ += static_cast<NB_USHORT>(length);
        while (format.strip && position() != start && position()[-1] == ' ') {
            --end_;
        }
        finish();
    }

    int count() const { return count_; }
    std::string_view argument(int number) const { // from 1; empty beyond the last
        if (number < 1 || number > count_) {
            return {};
        }
        return {text_ + starts_[number - 1],
                static_cast<std::size_t>(starts_[number] - starts_[number - 1])};
    }

private:
    char* position() { return text_ + end_; }
    std::size_t room() const { return sizeof text_ - end_; }
    void append(const char* text, std::size_t length) {
        length = std::min(length, room());
        std::memcpy(position(), text, length);
        end_ += static_cast<NB_USHORT>(length);
    }
    void finish() { starts_[++count_] = end_; }

    char text_[VGA_MESSAGE_WORK_SIZE];
    NB_USHORT starts_[max_arguments + 1] = {};
    NB_USHORT end_ = 0;
    int count_ = 0;
};

// The next type name of a descriptor, or an empty one at its end.
std::string_view next_format(const char*& descriptor) {
    while (*descriptor == ' ' || *descriptor == '\t') {
        ++descriptor;
    }
    const char* start = descriptor;
    while (*descriptor >= 'a' && *descriptor <= 'z') {
        ++descriptor;
    }
    return {start, static_cast<std::size_t>(descriptor - start)};
}

// False when the descriptor is malformed; what was read so far stays usable.
void convert_arguments(WORK_AREA& work, const char* descriptor, va_list arguments) {
    while (work.count() < max_arguments) {
        const std::string_view name = next_format(descriptor);
        if (name.empty()) {
            VGA_ASSERT_TEXT(*descriptor == '\0', "format_type < NUM_VGA_FORMATS");
            return;
        }
        const int format_len = static_cast<int>(name.size());
        if (!VGA_ASSERT(format_len < VGA_FORMAT_LEN)) {
            return;
        }
        const auto format = std::ranges::find(formats, name, &FORMAT_ROW::name);
        if (!VGA_ASSERT_TEXT(format != std::end(formats), "format_type < NUM_VGA_FORMATS")) {
            return;
        }
        switch (format->source) {
        case SOURCE::INTEGER:
            work.add_integer(*format, va_arg(arguments, NB_ULONG));
            break;
        case SOURCE::STRING:
            work.add_string(va_arg(arguments, const char*));
            break;
        case SOURCE::FIELD: {
            const std::size_t length = va_arg(arguments, NB_ULONG) & 0xFFFF;
            work.add_field(*format, length, va_arg(arguments, const char*));
            break;
        }
        }
    }
}

int read_number(const char*& text) {
    int number = 0;
    while (is_digit(*text)) {
        number = std::min(number * 10 + (*text++ - '0'), 1'000'000);
    }
    return number;
}

// Makes room for length more bytes behind used. False: no memory, the old block stays.
bool grow_block(std::size_t& size, std::size_t used, std::size_t length) {
    std::size_t wanted = size;
    while (used + length >= wanted) {
        wanted += block_step;
    }
    if (wanted == size) {
        return true;
    }
    auto* larger = static_cast<char*>(vga_alloc(wanted));
    if (larger == nullptr) {
        return false;
    }
    if (used != 0) {
        std::memcpy(larger, gvga_message_memory, used);
    }
    vga_free(gvga_message_memory);
    gvga_message_memory = larger;
    size = wanted;
    return true;
}

bool load_texts() {
    std::size_t offsets[VGA_MESSAGE_COUNT] = {};
    std::size_t size = 0;
    std::size_t used = 0;
    for (int number = 1; number < VGA_MESSAGE_COUNT; ++number) {
        const char* text = nullptr;
        v0_get_message(gvga_setid, number, &text, gvga_catalog);
        if (text == nullptr) {
            nba_pd_print_problem(catalogue_problem, 4, "s", catalogue_path);
            return false;
        }
        const std::size_t length = std::strlen(text);
        if (!grow_block(size, used, length)) {
            return false;
        }
        std::memcpy(gvga_message_memory + used, text, length + 1);
        offsets[number] = used;
        used += length + 1;
    }
    for (int number = 1; number < VGA_MESSAGE_COUNT; ++number) {
        gvga_messages[number] = gvga_message_memory + offsets[number];
    }
    return true;
}

} // namespace

bool vga_load_messages() {
    std::fill(std::begin(gvga_messages), std::end(gvga_messages), nullptr);
    if (v0_initialise_message_catalog(&gvga_catalog) != 0) {
        gvga_catalog = -1;
        nba_pd_print_problem(catalogue_problem, 3, "s", catalogue_path);
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    gvga_setid = VGA_MESSAGE_SET;
    if (!load_texts()) {
        vga_free_messages();
        VGA_FATAL(VGA_EXIT_START, 0);
        return false;
    }
    return true;
}

void vga_free_messages() {
    std::fill(std::begin(gvga_messages), std::end(gvga_messages), nullptr);
    vga_free(gvga_message_memory);
    gvga_message_memory = nullptr;
}

void vga_print_msg(char* output, const char* message_text, const char* descriptor, ...) {
    va_list arguments;
    va_start(arguments, descriptor);
    vga_print_msg_va(output, message_text, descriptor, arguments);
    va_end(arguments);
}

void vga_print_msg_va(char* output, const char* message_text, const char* descriptor,
                      va_list arguments) {
    WORK_AREA work;
    convert_arguments(work, descriptor, arguments);
    const char* text = message_text;
    while (*text != '\0') {
        if (*text != '%') {
            *output++ = *text++;
            continue;
        }
        ++text;
        if (is_digit(*text)) {
            const std::string_view argument = work.argument(read_number(text));
            output = std::copy(argument.begin(), argument.end(), output);
            text += *text == '%';
        } else if (*text == 't' && is_digit(text[1])) {
            const char* digits = ++text;
            read_number(text);
            *output++ = '%';
            *output++ = 't';
            output = std::copy(digits, text, output);
            *output++ = '%';
            text += *text == '%';
        } else if (*text == '%') {
            *output++ = *text++;
        }
    }
    *output = '\0';
}

void vga_tab_msg(char* output, const char* input) {
    std::size_t position = 0; // where the next character goes
    std::size_t end = 0;      // of what was written
    while (*input != '\0') {
        if (input[0] != '%' || input[1] != 't') {
            output[position++] = *input++;
            end = std::max(end, position);
            continue;
        }
        input += 2;
        const auto column = static_cast<std::size_t>(read_number(input));
        input += *input == '%';
        while (end < column) {
            output[end++] = ' ';
        }
        position = column;
    }
    output[position] = '\0';
}

void vga_print_usage(bool report_bad_argument, char** argv) {
    // A catalogue of its own: a bad argument is found while the program's is open.
    NBA_CATALOGUE catalogue = -1;
    if (v0_initialise_message_catalog(&catalogue) != 0) {
        nba_pd_print_problem(catalogue_problem, 0, "s", catalogue_path);
        VGA_FATAL(VGA_EXIT_START, 0);
        return;
    }
    gvga_setid = VGA_MESSAGE_SET;
    // Null, with the problem logged and the run ended, when the message is missing.
    const auto get = [catalogue](int number, int subcode) {
        const char* text = nullptr;
        v0_get_message(gvga_setid, number, &text, catalogue);
        if (text == nullptr) {
            nba_pd_print_problem(catalogue_problem, subcode, "s", catalogue_path);
            VGA_FATAL(VGA_EXIT_START, 0);
        }
        return text;
    };
    const auto asks_for_usage = [](std::string_view argument) {
        return argument == "-?" || argument == "-help" || argument == "-HELP";
    };
    if (report_bad_argument && !asks_for_usage(argv[1])) {
        if (const char* text = get(601, 1); text != nullptr) {
            char line[2 * VGA_MESSAGE_BUFFER_SIZE];
            vga_print_msg(line, text, "s", argv[1]);
            nb_printf("%s", line);
        }
    }
    if (const char* text = get(611, 2); text != nullptr) {
        nb_printf("%s", text);
    }
    v0_close_message_catalog(&catalogue);
}
