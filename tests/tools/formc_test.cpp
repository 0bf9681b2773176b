// The form compiler, run as the build runs it, and the UID file it makes, loaded with Mrm on a real
// display.
#include <gtest/gtest.h> // before the X headers, which define None

#include <Mrm/MrmPublic.h>
#include <Xm/XmAll.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
const std::string build_dir = TESSALY_BUILD_DIR;

struct Outcome {
    int status;
    std::string output;
};

Outcome run(const std::string& command) {
    Outcome result{-1, ""};
    if (FILE* pipe = popen((command + " 2>&1").c_str(), "r")) {
        char buffer[512];
        while (const size_t n = fread(buffer, 1, sizeof buffer, pipe))
            result.output.append(buffer, n);
        result.status = pclose(pipe);
    }
    return result;
}

struct Scratch {
    fs::path dir = fs::temp_directory_path() / ("formc_test." + std::to_string(getpid()));
    Scratch() { fs::create_directories(dir); }
    ~Scratch() { fs::remove_all(dir); }
    Outcome compile(const std::string& form) const {
        std::ofstream(dir / "x.form") << form;
        return run("cd " + dir.string() + " && " + build_dir +
                   "/tools/formc -m x -n x.names -o x.uil x.form");
    }
};

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
    const Scratch scratch;
    for (const Case& c : cases) {
        const Outcome result = scratch.compile(c.form);
        EXPECT_NE(result.status, 0) << c.form;
        EXPECT_EQ(result.output, std::string(c.error) + "\n") << c.form;
    }
    EXPECT_FALSE(fs::exists(scratch.dir / "x.uil")) << "a form with errors must not leave output";
}

TEST(Formc, WritesUilThatTheCompilerTakes) {
    const std::string long_text(300, 'w');
    const Scratch scratch;
    const Outcome result = scratch.compile(
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
    ASSERT_EQ(result.output, "");
    std::ifstream uil(scratch.dir / "x.uil");
    for (std::string line; std::getline(uil, line);)
        EXPECT_LE(line.size(), 132u) << line;
    const Outcome compiled = run("cd " + scratch.dir.string() + " && uil -o x.uid x.uil");
    EXPECT_EQ(compiled.status, 0);
    EXPECT_EQ(compiled.output, "");
}

// ---- The UID file of the build, on a display.

Widget application = nullptr;
int warnings = 0;

void count_warning(String text) {
    ++warnings;
    ADD_FAILURE() << "toolkit warning: " << text;
}

void ignore_action(Widget, XEvent*, String*, Cardinal*) {}
void ignore_callback(Widget, XtPointer, XtPointer) {}

struct Listed {
    std::string name;
    std::string type;
};

// The list of widgets the build writes, by window or dialog.
std::map<std::string, std::vector<Listed>> listed_widgets() {
    std::map<std::string, std::vector<Listed>> forms;
    std::ifstream in(build_dir + "/data/forms/tessalydlg.names");
    for (std::string form, name, type; in >> form >> name >> type;)
        forms[form].push_back({name, type});
    return forms;
}

class Uid : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!application) {
            MrmInitialize();
            setenv("XFILESEARCHPATH", (build_dir + "/data/app-defaults/%N").c_str(), 1);
            static XtAppContext context;
            int argc = 1;
            char program[] = "tessaly";
            char* argv[] = {program, nullptr};
            application = XtVaAppInitialize(&context, "Tessaly", nullptr, 0, &argc, argv, nullptr,
                                            XmNmappedWhenManaged, False, XmNwidth, 10, XmNheight,
                                            10, nullptr);
            XtAppSetWarningHandler(context, count_warning);
            register_actions(context);
            XtRealizeWidget(application);
        }
        register_procedures();
        std::string path = build_dir + "/data/uid/tessalydlg.uid";
        String files[] = {path.data()};
        ASSERT_EQ(MrmOpenHierarchyPerDisplay(XtDisplay(application), 1, files, nullptr, &hierarchy),
                  MrmSUCCESS);
    }
    static void TearDownTestSuite() { MrmCloseHierarchy(hierarchy); }

    // The words of the module of which wanted(word before, word, character behind) is true.
    template <typename Wanted> static std::set<std::string> words_of_module(Wanted wanted) {
        std::ifstream in(build_dir + "/data/forms/tessalydlg.uil");
        std::set<std::string> words;
        std::string before, word;
        for (char c; in.get(c);) {
            if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
                word += c;
            } else if (!word.empty()) {
                if (wanted(before, word, c))
                    words.insert(word);
                before = std::exchange(word, "");
            }
        }
        return words;
    }
    // The program's own actions, and the procedures that the module declares.
    static void register_actions(XtAppContext context) {
        static const std::set<std::string> names =
            words_of_module([](const auto&, const auto& word, char behind) {
                return word.starts_with("vga_") && behind == '(';
            });
        std::vector<XtActionsRec> actions;
        for (const std::string& name : names)
            actions.push_back({const_cast<String>(name.c_str()), ignore_action});
        XtAppAddActions(context, actions.data(), static_cast<Cardinal>(actions.size()));
    }
    static void register_procedures() {
        static const std::set<std::string> names = words_of_module(
            [](const auto& before, const auto&, char) { return before == "procedure"; });
        std::vector<MRMRegisterArg> arguments;
        for (const std::string& name : names)
            arguments.push_back(
                {const_cast<String>(name.c_str()), reinterpret_cast<XtPointer>(ignore_callback)});
        ASSERT_EQ(MrmRegisterNames(arguments.data(), static_cast<MrmCount>(arguments.size())),
                  MrmSUCCESS);
    }

    // Fetches a window or dialog and puts it on the display.
    static Widget show(const std::string& name, bool window) {
        std::string text = name;
        Widget shell = window
                           ? XtVaAppCreateShell(text.data(), "Tessaly", applicationShellWidgetClass,
                                                XtDisplay(application), nullptr)
                           : XmCreateDialogShell(application, text.data(), nullptr, 0);
        Widget top = nullptr;
        MrmType type;
        EXPECT_EQ(MrmFetchWidget(hierarchy, text.data(), shell, &top, &type), MrmSUCCESS) << name;
        if (!top)
            return nullptr;
        XtManageChild(top);
        if (window) {
            XtVaSetValues(shell, XmNwidth, 800, XmNheight, 600, nullptr);
            XtRealizeWidget(shell);
        }
        return top;
    }

    static inline MrmHierarchy hierarchy = nullptr;
};

// Runs the event loop until the condition holds; false when it does not within five seconds.
template <class Condition> bool pump_until(Condition condition) {
    XtAppContext context = XtWidgetToApplicationContext(application);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        XSync(XtDisplay(application), False);
        while (XtAppPending(context))
            XtAppProcessEvent(context, XtIMAll);
    }
    return true;
}

bool visible(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) &&
           attributes.map_state == IsViewable;
}

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

TEST_F(Uid, EveryListedWidgetIsFound) {
    const auto forms = listed_widgets();
    ASSERT_TRUE(forms.contains("nodew"));
    for (const auto& [form, widgets] : forms) {
        const bool window = widgets.front().type == "XmMainWindow";
        Widget top = show(form, window);
        ASSERT_NE(top, nullptr) << form;
        for (const Listed& widget : widgets)
            if (widget.name != form) {
                EXPECT_NE(XtNameToWidget(top, ("*" + widget.name).c_str()), nullptr)
                    << form << ": " << widget.name;
            }
        expect_inside_parent(top);
        XtDestroyWidget(XtParent(top));
    }
    EXPECT_EQ(warnings, 0);
}

Position root_x(Widget w, bool right) {
    Position x, y;
    Dimension width;
    XtTranslateCoords(w, 0, 0, &x, &y);
    XtVaGetValues(w, XmNwidth, &width, nullptr);
    return static_cast<Position>(x + (right ? width : 0));
}

TEST_F(Uid, FieldsAreAlignedAndAHiddenRowLeavesNoGap) {
    Widget top = show("noded", false);
    ASSERT_NE(top, nullptr);
    const auto find = [&](const char* name) { return XtNameToWidget(top, name); };
    const Position left = root_x(find("*nodedCPAliasText"), false);
    for (const char* name : {"*nodedNetNameText", "*nodedIDBlockText", "*nodedDesc"})
        EXPECT_NEAR(root_x(find(name), false), left, 1) << name;

    ASSERT_TRUE(pump_until([&] { return visible(top); }));
    const Dimension row_height = height_of(XtParent(find("*nodedTypeMenu")));
    const Dimension full_height = height_of(top);
    XtUnmanageChild(find("*nodedTypeMenu"));
    XtUnmanageChild(find("*nodedTypeLabel"));
    EXPECT_TRUE(pump_until([&] { return full_height - height_of(top) >= row_height - 2; }))
        << height_of(top);
    expect_inside_parent(top);
    XtManageChild(find("*nodedTypeMenu"));
    XtManageChild(find("*nodedTypeLabel"));
    EXPECT_TRUE(pump_until([&] { return height_of(top) == full_height; })) << height_of(top);
    expect_inside_parent(top);
    XtDestroyWidget(XtParent(top));
}

TEST_F(Uid, ToolBarKeepsItsHeightWhenTheShellIsSizedBeforeItIsRealized) {
    Widget top = show("nodew", true);
    ASSERT_NE(top, nullptr);
    const int bar = height_of(XtNameToWidget(top, "*nodewToolbarRowColumn"));
    const int frame = height_of(XtNameToWidget(top, "*nodewStartButtonFrame"));
    EXPECT_GE(bar, 40 + 16) << "the node area is 40 pixels high, with 8 above and below";
    EXPECT_GE(bar, frame + 16);
    XtDestroyWidget(XtParent(top));
}

} // namespace
