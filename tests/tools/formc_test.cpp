// The form compiler, run as the build runs it, and the windows and dialogs that it makes.
#include <gtest/gtest.h> // before the X headers, which define None

#include "kit/console.h"
#include "kit/pointer.h"

#include "shell/globals.h"
#include "store/store.h"
#include "ui/framework/dialog.h"
#include "ui/framework/window_menu.h"

#include <Xm/XmAll.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

kit::RESULT in_scratch(const std::string& command) {
    return kit::run({"/bin/sh", "-c", "cd " + kit::scratch() + " && " + command});
}

kit::RESULT compile(const std::string& form) {
    std::ofstream(kit::scratch() + "/x.form") << form;
    return in_scratch(TESSALY_BUILD_DIR "/tools/formc -m x -n x.names -o x.uil x.form");
}

TEST(Formc, ReportsErrorsWithFileAndLine) {
    struct Case {
        const char* form;
        const char* error;
    };
    const Case cases[] = {
        {"dialog a \"T\" {\n  feild X \"Y\"\n  buttons\n}\n", "x.form:2: there is no 'feild' here"},
        {"dialog a \"T\" {\n\n  field aX \"Y\" with=8\n  buttons\n}\n",
         "x.form:3: 'field' does not know 'with'"},
        {"dialog a \"T\" {\n  field aX \"Y\"\n  field aX \"Z\"\n  buttons\n}\n",
         "x.form:3: the name 'aX' is used before, at x.form:2"},
        {"dialog a \"T\" {\n  field aX \"Y\"\n",
         "x.form:1: the block of this 'dialog' is not closed"},
        {"dialog a \"T\" {\n  field aX \"Y\n  buttons\n}\n",
         "x.form:2: a text has no closing quote"},
        {"# one\ndialog a \"T\" {\n  field aX \"Y:\"\n  buttons\n}\n",
         "x.form:3: a label has no trailing colon"},
        {"dialog a \"T\" {\n  field aX \"Y\" width=8x\n  buttons\n}\n",
         "x.form:2: 'width' needs a number, not '8x'"},
        {"dialog a \"T\" {\n  field aX \"Y\" modify=1st\n  buttons\n}\n",
         "x.form:2: '1st' is no callback name"},
        {"dialog a \"T\" {\n  field aAnUncommonlyLongNameOfAWidgetXY \"Y\"\n  buttons\n}\n",
         "x.form:2: the name 'aAnUncommonlyLongNameOfAWidgetXY' is longer than 31 characters"},
        {"dialog a \"T\" {\n  field bX \"Y\"\n  buttons\n}\n",
         "x.form:2: the name 'bX' does not begin with 'a'"},
        {"dialog a \"T\" {\n  field aX \"Y\"\n}\n", "x.form:1: the dialog has no 'buttons'"},
        {"dialog a \"A\" {\n}\ndialog b \"B\" {\n}\n",
         "x.form:1: the dialog has no 'buttons'\nx.form:3: the dialog has no 'buttons'"},
        {"dialog a \"T\" {\n  fqname aX \"Y\"\n  buttons\n}\n",
         "x.form:2: 'fqname' needs the names of two texts"},
        {"window a {\n  menubar {\n    menu \"&File\" {\n      item aX \"Open\"\n    }\n  }\n}\n",
         "x.form:4: a menu entry needs a label with a mnemonic, as in \"&Open\""},
        {"window a {\n  menubar {\n    menu \"&File\" {\n      item aX \"&Open\"\n      item aY \"Cl&ose\"\n"
         "    }\n  }\n}\n",
         "x.form:5: the mnemonic 'O' is used before, in line 4"},
        {"window a {\n  menubar {\n    menu \"&File\" {\n      item aX \"&Open\" accel=\"Ctrl+O\"\n    }\n"
         "    menu \"&Edit\" {\n      item aY \"&Copy\" accel=\"Ctrl+O\"\n    }\n  }\n}\n",
         "x.form:7: the accelerator Ctrl+O is used before, in line 4"},
        {"window a {\n  viewer aA aH aV\n  viewer aB aI aW\n}\n",
         "x.form:3: a window has one 'viewer', and a tool bar or a button row"},
    };
    for (const Case& c : cases) {
        const kit::RESULT result = compile(c.form);
        EXPECT_NE(result.status, 0) << c.form;
        EXPECT_EQ(result.err, std::string(c.error) + "\n") << c.form;
    }
    EXPECT_FALSE(std::filesystem::exists(kit::scratch() + "/x.uil"))
        << "a form with errors must not leave output";
}

TEST(Formc, WritesUilThatTheCompilerTakes) {
    const std::string long_text(300, 'w');
    const kit::RESULT result = compile(
        "dialog a \"Quotes \\\" and \\\\ and &&\" resizable {\n"
        "  label aL \"" +
        long_text +
        "\" span\n"
        "  label aTwo \"one\\ntwo\"\n"
        "  frame aF \"Frame\" {\n    row aR \"Row\" {\n      text aT width=5 check=hex modify=vga_more\n      button aB \"&Go\"\n"
        "    }\n    radio aChoice \"Choice\" horizontal {\n      toggle aC1 \"1\" set\n      toggle aC2 \"2\"\n    }\n  }\n"
        "  columns {\n    group aG {\n      value aV \"Value\" width=20\n    }\n    group aH hidden {\n"
        "      checks {\n        toggle aC3 \"3\"\n      }\n    }\n  }\n"
        "  listpair {\n    list aL1 \"One\"\n    list aL2 \"Two\" multiple\n    button aMove \"<\"\n  }\n"
        "  viewer aDraw aAcross aDown rows=3\n  separator\n  buttonrow {\n    button aX \"X\" arm=p,q(\"tag\")\n  }\n"
        "  object aScale class=XmScale XmNmaximum=10 XmNtitleString=compound_string(\"Level\")\n"
        "  field aPwd \"Password\" translations=\"<Key>F2: do_it(0)\\n<Key>F3: do_it(1)\" XmNmaxLength=3\n"
        "  buttons aApplyButton ok=vga_ok apply=vga_apply nohelp\n}\n");
    ASSERT_EQ(result.err, "");
    std::ifstream uil(kit::scratch() + "/x.uil");
    for (std::string line; std::getline(uil, line);)
        EXPECT_LE(line.size(), 132u) << line;
    const kit::RESULT compiled = in_scratch("uil -o x.uid x.uil");
    EXPECT_EQ(compiled.status, 0);
    EXPECT_EQ(compiled.out + compiled.err, "");
}

// ---- The windows and dialogs of the console, which the build makes of its forms.

Dimension height_of(Widget w) {
    Dimension height;
    XtVaGetValues(w, XmNheight, &height, nullptr);
    return height;
}

// A managed child that reaches beyond its parent is clipped: its text cannot be read.
void expect_inside_parent(Widget parent) {
    WidgetList children;
    Cardinal count;
    Dimension width, height;
    XtVaGetValues(parent, XmNchildren, &children, XmNnumChildren, &count, XmNwidth, &width,
                  XmNheight, &height, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        if (!XtIsManaged(children[i]) || XtIsShell(children[i]))
            continue;
        Position x, y;
        Dimension w, h;
        XtVaGetValues(children[i], XmNx, &x, XmNy, &y, XmNwidth, &w, XmNheight, &h, nullptr);
        EXPECT_GE(x, 0) << XtName(children[i]);
        EXPECT_GE(y, 0) << XtName(children[i]);
        EXPECT_LE(x + w, width) << XtName(children[i]) << " in " << XtName(parent);
        EXPECT_LE(y + h, height) << XtName(children[i]) << " in " << XtName(parent);
        if (XtIsComposite(children[i]))
            expect_inside_parent(children[i]);
    }
}

Position root_x(Widget w, bool right) {
    Position x, y;
    Dimension width;
    XtTranslateCoords(w, 0, 0, &x, &y);
    XtVaGetValues(w, XmNwidth, &width, nullptr);
    return static_cast<Position>(x + (right ? width : 0));
}

void expect_alignment_without_gaps(Widget top) {
    const auto find = [&](const char* name) { return XtNameToWidget(top, name); };
    const Position left = root_x(find("*nodedCPAliasText"), false);
    for (const char* name : {"*nodedNetNameText", "*nodedIDBlockText", "*nodedDesc"})
        EXPECT_NEAR(root_x(find(name), false), left, 1) << name;

    const Dimension row_height = height_of(XtParent(find("*nodedTypeMenu")));
    const Dimension full_height = height_of(top);
    XtUnmanageChild(find("*nodedTypeMenu"));
    XtUnmanageChild(find("*nodedTypeLabel"));
    EXPECT_TRUE(kit::pump_until([&] { return full_height - height_of(top) >= row_height - 2; }))
        << height_of(top);
    expect_inside_parent(top);
    XtManageChild(find("*nodedTypeMenu"));
    XtManageChild(find("*nodedTypeLabel"));
    EXPECT_TRUE(kit::pump_until([&] { return height_of(top) == full_height; })) << height_of(top);
    expect_inside_parent(top);
}

TEST(Forms, AreAlignedAndNothingIsClipped) {
    const kit::SERVICE service({"--domain", TESSALY_SOURCE_DIR "/data/domains/enterprise.toml"});
    kit::CONSOLE console(service);
    ASSERT_TRUE(console.started() && console.wait_built());
    vga_show_node_window(ntl_avl_first<vga_node>(gvga_system->node_tree));
    vga_open_dialog(VGA_UID_CPIC_WINDOW, gvga_main_dialog, gvga_system, VGA_OPEN_ADD);
    console.wait_idle();
    for (NB_USHORT id = 0; id <= VGA_UID_MAX; ++id) {
        const VGA_UID_DESC& row = gvga_uid_desc[id];
        if (row.get_widgets == nullptr) {
            continue;
        }
        SCOPED_TRACE(row.uid_name);
        if (row.kind == VGA_KIND_WINDOW) {
            const vga_dialog* window = vga_open_instance(id);
            ASSERT_NE(window, nullptr);
            expect_inside_parent(window->widget);
            continue;
        }
        vga_dialog* dialog = nullptr;
        ASSERT_TRUE(vga_get_dialog(id, gvga_main_dialog, nullptr, &dialog));
        vga_display_dialog(dialog);
        console.wait_idle();
        expect_inside_parent(dialog->widget);
        if (id == VGA_UID_NODE_DIALOG)
            expect_alignment_without_gaps(dialog->widget);
        vga_release_dialog(dialog);
        XtUnmanageChild(dialog->widget);
    }
    const int bar = height_of(console.widget("nodewToolbarRowColumn"));
    const int frame = height_of(console.widget("nodewStartButtonFrame"));
    EXPECT_GE(bar, 40 + 16) << "the node area is 40 pixels high, with 8 above and below";
    EXPECT_GE(bar, frame + 16);
}

} // namespace
