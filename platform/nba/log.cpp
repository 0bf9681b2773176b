#include "nba/nba.h"

#include <algorithm>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

NBA_TRACE_CONTROL ptrc;

namespace {

std::size_t assert_count;
char last_assert[256];

// One line of the log, cut when it grows too long.
struct Record {
    char text[2048];
    std::size_t length = 0;

    void add(char c) {
        if (length < sizeof text - 1) { // leaves room for the end of line
            text[length++] = c;
        }
    }
    void add(std::string_view part) {
        for (const char c : part) {
            add(c);
        }
    }
    // Quoted; what does not print is escaped, so that a record stays one line.
    void add_quoted(std::string_view part) {
        add('"');
        for (const char c : part) {
            const unsigned char code = static_cast<unsigned char>(c);
            if (code < 0x20 || code == 0x7F) {
                add_number("\\x%02" PRIx32, code);
            } else {
                if (c == '"' || c == '\\') {
                    add('\\');
                }
                add(c);
            }
        }
        add('"');
    }
    void add_number(const char* format, NB_ULONG number) {
        char digits[16];
        std::snprintf(digits, sizeof digits, format, number);
        add(digits);
    }
};

void begin(Record* record, const char* kind) {
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    std::tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    char time[40];
    const std::size_t length = std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%S", &utc);
    record->add(std::string_view(time, length));
    record->add_number(".%03" PRIu32 "Z ", static_cast<NB_ULONG>(now.tv_nsec / 1000000));
    record->add(kind);
}

// In one write, so that records of several programs do not mix.
void write_record(Record* record) {
    record->text[record->length++] = '\n';
    const char* path = std::getenv("TESSALY_LOG");
    int file = STDERR_FILENO;
    if (path != nullptr && *path != '\0') {
        file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
        if (file < 0) {
            file = STDERR_FILENO;
        }
    }
    // There is nowhere to report that the log itself cannot be written.
    [[maybe_unused]] const ssize_t written = write(file, record->text, record->length);
    if (file != STDERR_FILENO) {
        close(file);
    }
}

void add_field(Record* record, int length, const void* field, bool ebcdic) {
    char local[256];
    const std::size_t n = std::min<std::size_t>(static_cast<NB_USHORT>(length), sizeof local);
    if (field == nullptr) {
        record->add("(null)");
        return;
    }
    std::memcpy(local, field, n);
    if (ebcdic) {
        nba_ebcdic_to_local(local, n);
    }
    std::string_view text(local, n);
    text = text.substr(0, text.find('\0'));
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    record->add_quoted(text);
}

void add_arguments(Record* record, std::string_view descriptor, std::va_list arguments) {
    while (true) {
        const std::size_t start = descriptor.find_first_not_of(" \t");
        if (start == std::string_view::npos) {
            return;
        }
        descriptor.remove_prefix(start);
        const std::string_view kind = descriptor.substr(0, descriptor.find_first_of(" \t"));
        descriptor.remove_prefix(kind.size());
        record->add(' ');
        if (kind == "s") {
            const char* text = va_arg(arguments, const char*);
            record->add_quoted(text != nullptr ? text : "(null)");
        } else if (kind == "ca" || kind == "ea" || kind == "cs" || kind == "es") {
            const int length = va_arg(arguments, int);
            const void* field = va_arg(arguments, const void*);
            add_field(record, length, field, kind[0] == 'e');
        } else if (kind == "c") {
            const char c = static_cast<char>(va_arg(arguments, int));
            record->add_quoted(std::string_view(&c, 1));
        } else if (kind == "b") {
            record->add_number("%2.2" PRIx32, va_arg(arguments, NB_ULONG) & 0xFF);
        } else if (kind == "i") {
            record->add_number("%" PRIu32, va_arg(arguments, NB_ULONG) & 0xFFFF);
        } else if (kind == "x") {
            record->add_number("0x%4.4" PRIx32, va_arg(arguments, NB_ULONG) & 0xFFFF);
        } else if (kind == "l") {
            record->add_number("%" PRIu32, va_arg(arguments, NB_ULONG));
        } else if (kind == "lx") {
            record->add_number("0x%8.8" PRIx32, va_arg(arguments, NB_ULONG));
        } else { // the size of an unknown argument is unknown too
            record->add("(bad descriptor)");
            return;
        }
    }
}

void print(const char* kind, NB_ULONG id, int subcode, const char* descriptor,
           std::va_list arguments) {
    Record record;
    begin(&record, kind);
    record.add_number(" 0x%8.8" PRIx32, id);
    record.add_number(" %" PRId32, static_cast<NB_ULONG>(subcode));
    add_arguments(&record, descriptor != nullptr ? descriptor : "", arguments);
    write_record(&record);
}

} // namespace

void nba_pd_print_problem(NB_ULONG id, int subcode, const char* descriptor, ...) {
    std::va_list arguments;
    va_start(arguments, descriptor);
    print("problem", id, subcode, descriptor, arguments);
    va_end(arguments);
}

void nba_pd_print_exception(NB_ULONG id, int subcode, const char* descriptor, ...) {
    if (nba_exceptions_suppressed()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, descriptor);
    print("exception", id, subcode, descriptor, arguments);
    va_end(arguments);
}

void v0_assert(const char* file, int line, const char* expression) {
    ++assert_count;
    v0_mb_strncpy(last_assert, expression, sizeof last_assert);
    Record record;
    begin(&record, "assertion ");
    record.add(file);
    record.add_number(":%" PRIu32 " ", static_cast<NB_ULONG>(line));
    record.add_quoted(expression);
    write_record(&record);
}

std::size_t nba_assert_count() {
    return assert_count;
}

const char* nba_last_assert() {
    return last_assert;
}
