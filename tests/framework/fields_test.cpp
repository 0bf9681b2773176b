#include "framework/fixture.h"

#include "shell/messages.h"
#include "ui/framework/fields.h"

#include <Xm/TextF.h>

#include <cstring>
#include <string>

namespace {

constexpr vga_field_error none = {0, ""};
constexpr vga_field_error empty = {401, "empty"};
constexpr vga_field_error wrong = {402, "wrong"};

class Fields : public FrameworkTest {
protected:
    void SetUp() override {
        FrameworkTest::SetUp();
        Widget parent = vga_name_widget(main_window->widget, "syswWork", nullptr);
        for (Widget& field : fields) {
            field = XtVaCreateManagedWidget("field", xmTextFieldWidgetClass, parent, XmNx, 10, XmNy,
                                            120 + 30 * static_cast<int>(&field - fields), nullptr);
        }
        settle();
    }
    Widget text(int number, const char* value) {
        XmTextFieldSetString(fields[number], const_cast<char*>(value));
        return fields[number];
    }
    // The help tag of the message shown, or "", which is then taken down.
    std::string refusal() {
        settle();
        const vga_modal_dlg& box = main_window->modal_dlg;
        const std::string tag = box.open ? box.help_tag : "";
        vga_close_modal_dialog(main_window);
        return tag;
    }
    // The field that the keyboard goes to once the box is closed.
    int focus() {
        Widget focused = XmGetFocusWidget(main_window->shell);
        return focused == fields[0] ? 0 : focused == fields[1] ? 1 : -1;
    }

    Widget fields[2] = {};
};

TEST_F(Fields, Numbers) {
    const struct {
        const char* text;
        const char* refused; // "": read
        NB_ULONG value;
    } cases[] = {
        {"12", "", 12},
        {"12x4", "", 12},
        {"0", "wrong", 0},
        {"4000000000", "", 4000000000},
        {"4000000001", "wrong", 0},
        {"-1", "wrong", 0},
        {"4294967297", "wrong", 0},
        {"99999999999999999999", "wrong", 0},
        {"", "empty", 0},
        {"x", "wrong", 0},
    };
    for (const auto& each : cases) {
        NB_ULONG value = 7;
        EXPECT_EQ(
            vga_check_field(main_window, text(1, each.text), 1, 4000000000, empty, wrong, &value),
            *each.refused == '\0')
            << each.text;
        EXPECT_EQ(refusal(), each.refused) << each.text;
        EXPECT_EQ(value, *each.refused == '\0' ? each.value : 7) << each.text;
        if (*each.refused != '\0') {
            EXPECT_EQ(focus(), 1);
        }
    }
}

TEST_F(Fields, SignedNumbers) {
    const struct {
        const char* text;
        const char* refused;
        NB_LONG value;
    } cases[] = {{"-5", "", -5},     {"-6", "wrong", 0},         {"10", "", 10},
                 {"11", "wrong", 0}, {"4294967296", "wrong", 0}, {"", "empty", 0}};
    for (const auto& each : cases) {
        NB_LONG value = 7;
        vga_check_signed_field(main_window, text(0, each.text), -5, 10, empty, wrong, &value);
        EXPECT_EQ(refusal(), each.refused) << each.text;
        EXPECT_EQ(value, *each.refused == '\0' ? each.value : 7) << each.text;
    }
}

// The range message shows the limits.
TEST_F(Fields, RangeMessageNamesTheLimits) {
    const char* const kept = gvga_messages[wrong.message];
    gvga_messages[wrong.message] = "%1 to %2";
    NB_ULONG value = 0;
    vga_check_field(main_window, text(0, "70000"), 3, 65535, empty, wrong, &value);
    settle();
    EXPECT_EQ(message_of(main_window), "3 to 65535");
    vga_close_modal_dialog(main_window);
    gvga_messages[wrong.message] = kept;
}

TEST_F(Fields, Hexadecimal) {
    const struct {
        const char* text;
        int length;
        std::string bytes;
    } cases[] = {{"05d0", 2, "\x05\xD0"},
                 {"", 0, ""},
                 {"05D", -1, ""},
                 {"0G", -1, ""},
                 {"C1C2C3C4", 3, "\xC1\xC2\xC3"}};
    for (const auto& each : cases) {
        NB_BYTE bytes[3] = {};
        EXPECT_EQ(vga_get_hex_field(main_window, text(0, each.text), bytes, 3, wrong), each.length);
        EXPECT_EQ(refusal(), each.length < 0 ? "wrong" : "") << each.text;
        EXPECT_EQ(std::memcmp(bytes, each.bytes.data(), each.bytes.size()), 0) << each.text;
    }
}

TEST_F(Fields, NodeIdentifiers) {
    const struct {
        const char *block, *id;
        bool may_be_empty;
        const char* refused;
        int focus;
        NB_BYTE node_id[4];
    } cases[] = {
        {"05D", "0A1B2", true, "", -1, {0x05, 0xD0, 0xA1, 0xB2}},
        {"fff", "fffff", true, "", -1, {0xFF, 0xFF, 0xFF, 0xFF}},
        {"", "", true, "", -1, {0, 0, 0, 0}},
        {"", "", false, "empty", 0, {9, 9, 9, 9}},
        {"5D", "0A1B2", true, "wrong", 0, {9, 9, 9, 9}},
        {"", "0A1B2", true, "wrong", 0, {9, 9, 9, 9}},
        {"05D", "A1B2", true, "wrong", 1, {9, 9, 9, 9}},
        {"05D", "", true, "wrong", 1, {9, 9, 9, 9}},
    };
    for (const auto& each : cases) {
        NB_BYTE node_id[4] = {9, 9, 9, 9};
        const bool read = vga_get_node_id(main_window, text(0, each.block), text(1, each.id),
                                          each.may_be_empty ? none : empty, wrong, node_id);
        EXPECT_EQ(read, *each.refused == '\0') << each.block << each.id;
        EXPECT_EQ(refusal(), each.refused) << each.block << each.id;
        EXPECT_EQ(std::memcmp(node_id, each.node_id, 4), 0) << each.block << each.id;
        if (!read) {
            EXPECT_EQ(focus(), each.focus) << each.block << each.id;
        }
    }
}

TEST_F(Fields, FullyQualifiedNames) {
    const struct {
        const char *network, *name;
        const char *whole, *partial; // null: refused
    } cases[] = {{"NET", "NODE", "NET.NODE", "NET.NODE"},
                 {"NETWORK1X", "NODENAMEX", "NETWORK1.NODENAME", "NETWORK1.NODENAME"},
                 {"NET", "", nullptr, "NET"},
                 {"", "NODE", nullptr, nullptr},
                 {"", "", nullptr, ""}};
    const auto check = [](bool made, std::string result, const char* expected) {
        ASSERT_EQ(made, expected != nullptr);
        if (made) {
            nba_ebcdic_to_local(result.data(), result.size());
            std::string padded(expected);
            padded.resize(17, ' ');
            EXPECT_EQ(result, padded);
        }
    };
    for (const auto& each : cases) {
        std::string name(17, 'x');
        auto* bytes = reinterpret_cast<NB_BYTE*>(name.data());
        const Widget network_field = text(0, each.network);
        const Widget name_field = text(1, each.name);
        const bool whole = vga_build_fq_name(network_field, name_field, bytes);
        check(whole, name, each.whole);
        const bool partial = vga_buildw_fq_name(network_field, name_field, bytes);
        check(partial, name, each.partial);
    }
}

} // namespace
