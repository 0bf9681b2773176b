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

// Ranges reach 4294967295, so numbers are wider than they are.
TEST_F(Fields, Numbers) {
    const struct {
        const char* text;
        const char* refused; // "": read
        NB_ULONG value;
    } cases[] = {
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
        const bool read = *each.refused == '\0';
        NB_ULONG value = 7;
        EXPECT_EQ(
            vga_check_field(main_window, text(1, each.text), 1, 4000000000, empty, wrong, &value),
            read)
            << each.text;
        EXPECT_EQ(refusal(), each.refused) << each.text;
        EXPECT_EQ(value, read ? each.value : 7) << each.text;
        EXPECT_EQ(focus(), read ? focus() : 1) << each.text;
    }
    for (const auto& [typed, wanted] :
         {std::pair{"-5", -5}, {"-6", 7}, {"11", 7}, {"4294967296", 7}}) {
        NB_LONG value = 7;
        vga_check_signed_field(main_window, text(0, typed), -5, 10, empty, wrong, &value);
        EXPECT_EQ(refusal(), wanted == 7 ? "wrong" : "") << typed;
        EXPECT_EQ(value, wanted) << typed;
    }
}

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

} // namespace
