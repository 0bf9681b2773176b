#include "framework/fixture.h"

#include "shell/messages.h"
#include "ui/framework/field_checks.h"
#include "ui/framework/texts.h"

#include <Xm/Text.h>
#include <Xm/TextF.h>

namespace {

struct EDIT { // of a field: start text, replaced range, new text
    XtCallbackProc check;
    const char* before;
    int from, to;
    const char* text;
    const char* after; // null: refused
};

class FieldChecks : public FrameworkTest {
protected:
    void SetUp() override {
        FrameworkTest::SetUp();
        field = vga_name_widget(main_window->widget, "syswText", nullptr);
        XtVaSetValues(field, XmNverifyBell, False, nullptr);
    }
    void use(XtCallbackProc check, const char* text) {
        XtRemoveAllCallbacks(field, XmNmodifyVerifyCallback);
        XmTextFieldSetString(field, const_cast<char*>(text));
        XtAddCallback(field, XmNmodifyVerifyCallback, check, nullptr);
    }
    void replace(int from, int to, const char* text) {
        XmTextFieldReplace(field, from, to, const_cast<char*>(text));
    }
    std::string text() {
        char* value = XmTextFieldGetString(field);
        const std::string result = value;
        XtFree(value);
        return result;
    }
    Widget field = nullptr;
};

TEST_F(FieldChecks, WhatEachAdmits) {
    const EDIT edits[] = {
        {vga_check_num_cb, "1", 1, 1, "2", "12"},
        {vga_check_num_cb, "", 0, 0, "1a", nullptr},
        {vga_check_num_cb, "12", 0, 1, "", "2"},
        {vga_check_signed_num_cb, "5", 0, 0, "-", "-5"},
        {vga_check_signed_num_cb, "5", 1, 1, "-", nullptr},
        {vga_check_signed_num_cb, "", 0, 0, "-12", "-12"},
        {vga_check_signed_num_cb, "", 0, 0, "1-2", nullptr},
        {vga_check_alphanum_cb, "", 0, 0, "a-", nullptr},
        {vga_check_caps_alphanum_cb, "", 0, 0, "ab1", "AB1"},
        {vga_all_caps_cb, "x", 1, 1, "abc!", "xABC!"},
        {vga_check_hex_cb, "", 0, 0, "09af", "09AF"},
        {vga_check_tp_name_cb, "a", 1, 1, " ", nullptr},
        {vga_check_ip_addr_cb, "", 0, 0, "10.1.2.3", "10.1.2.3"},
        {vga_check_ip_addr_cb, "", 0, 0, "10:1", nullptr},
        {vga_check_ip_name_cb, "", 0, 0, "a-b_c.d:1", "a-b_c.d:1"},
        {vga_check_ip_name_cb, "", 0, 0, "a/b", nullptr},
        {vga_check_filename_cb, "", 0, 0, "a~b", "a~b"},
        {vga_check_filename_cb, "", 0, 0, "a/b", nullptr},
        {vga_check_filename_cb, "", 0, 0, "a\x7f", nullptr},
        {vga_check_pathname_cb, "", 0, 0, "a b", nullptr},

        // Names: the rule for the first character applies at position 0 only.
        {vga_check_ebcdic_cb, "", 0, 0, "lu1", "LU1"},
        {vga_check_ebcdic_cb, "", 0, 0, "1lu", nullptr},
        {vga_check_ebcdic_cb, "L", 1, 1, "1", "L1"},
        {vga_check_ebcdic_cb, "L", 1, 1, ".", nullptr},
        {vga_check_ebcdic_cb, "L1", 0, 1, "", nullptr}, // "1" would start the name
        {vga_check_ebcdic_cb, "L1", 0, 2, "", ""},
        {vga_check_ebcdic_cb, "LA", 0, 1, "", "A"},
        {vga_check_ebcdic_cb, "", 0, 0, "ABCDEFGHI", nullptr},
        {vga_check_ebcdic_lower_cb, "", 0, 0, "lu1", "lu1"},
        {vga_check_ebcdic_lower_cb, "", 0, 0, "1lu", nullptr},
        {vga_check_ebcdic_ae_cb, "", 0, 0, "Ab.1", "Ab.1"},
        {vga_check_ebcdic_ae_cb, "", 0, 0, "a b", nullptr},

        // Mode names: all blanks or none.
        {vga_check_mode_name_cb, "", 0, 0, "        ", "        "},
        {vga_check_mode_name_cb, "  ", 1, 1, " ", "   "},
        {vga_check_mode_name_cb, "", 0, 0, "mode1", "MODE1"},
        {vga_check_mode_name_cb, "MODE", 4, 4, " ", nullptr},
        {vga_check_mode_name_cb, "", 0, 0, "A B", nullptr},
        {vga_check_mode_name_cb, "", 0, 0, " A", nullptr},
        {vga_check_mode_name_cb, "  ", 2, 2, "A", nullptr},
        {vga_check_mode_name_cb, "  ", 0, 2, "A", "A"},
        {vga_check_mode_name_cb, "", 0, 0, "$A", nullptr},
        {vga_check_mode_name_cb, "", 0, 0, "#INTER", "#INTER"},
        {vga_check_mode_name_cb, "A", 1, 1, "$", "A$"},
        {vga_check_mode_name_cb, "A$", 0, 1, "", nullptr},

        {vga_check_lu_name_template_cb, "", 0, 0, "lu..", "LU.."},
        {vga_check_lu_name_template_cb, "", 0, 0, ".lu", nullptr},
        {vga_check_lu_name_template_cb, "L.", 0, 1, "", nullptr},
        {vga_check_lu_name_template_cb, "L", 1, 1, ".", "L."},

        {vga_check_ebcdic_ae_pwd_cb, "", 0, 0, "Secret1234", "Secret1234"},
        {vga_check_ebcdic_ae_pwd_cb, "", 0, 0, "Secret12345", nullptr},
        {vga_check_hex_pwd_cb, "", 0, 0, "0a", "0A"},
    };
    for (const EDIT& edit : edits) {
        use(edit.check, edit.before);
        replace(edit.from, edit.to, edit.text);
        EXPECT_EQ(text(), edit.after != nullptr ? edit.after : edit.before)
            << "'" << edit.text << "' into '" << edit.before << "' at " << edit.from;
    }
}

TEST_F(FieldChecks, PasswordPlaceholderGoesWithTheFirstChange) {
    const struct {
        XtCallbackProc check;
        int placeholder;
    } fields[] = {{vga_check_ebcdic_ae_pwd_cb, VGA_TEXT_PASSWORD},
                  {vga_check_hex_pwd_cb, VGA_TEXT_HEX_PASSWORD}};
    for (const auto& [check, placeholder] : fields) {
        for (const auto& [from, to, typed] : {std::tuple{4, 4, "A"}, {0, 3, ""}, {9, 9, "!"}}) {
            use(check, "");
            XmTextFieldSetString(field, const_cast<char*>(gvga_messages[placeholder]));
            EXPECT_EQ(text(), gvga_messages[placeholder]);
            replace(from, to, typed);
            EXPECT_EQ(text(), "") << placeholder << " '" << typed << "'";
        }
        replace(0, 0, "A1");
        EXPECT_EQ(text(), "A1");
    }
}

} // namespace
