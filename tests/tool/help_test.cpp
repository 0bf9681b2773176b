#include "tool/fixture.h"

#include "dialogs/node_config.h"
#include "platform/help/dialog.h"
#include "shell/start.h"
#include "ui/framework/common_actions.h"
#include "ui/windows/about.h"
#include "ui/windows/help.h"
#include "ui/windows/node_window.h"

#include <csignal>
#include <filesystem>
#include <fstream>

// Help windows by real keys and buttons, on volumes of the test's own.
namespace {

using kit::CONSOLE;
using tool::Tool;

constexpr KeySym F1 = XK_F1;

class Help : public Tool {
protected:
    explicit Help(const std::vector<std::string>& options = {}) : Tool(options) {}

    const std::string base = kit::scratch() + "/help";

    void SetUp() override {
        Tool::SetUp();
        const struct {
            const char* volume;
            const char* location;
            std::string text;
        } topics[] = {
            {"Help4Tessaly", "_hometopic", "= Home\n== Group\n* {noded|Node}\n* {second|Second}"},
            {"Help4Tessaly", "connectivitypane",
             "= Connectivity\nFirst {second|the second}, {Help4Help:far|far away},\n{man:demo|demo}, "
             "{man:nothing|nothing}, {gone|gone}.\n\n" +
                 many_paragraphs() + "{second|the last}"},
            {"Help4Tessaly", "second", "= Another\nAnd {noded|further}."},
            {"Help4Tessaly", "noded", "= Node parameters\nText."},
            {"Help4Tessaly", "dlgfail", "= A message\nSee {second|the second}."},
            {"Help4Help", "_hometopic", "= On help\n* {far|Far}"},
            {"Help4Help", "far", "= Far"},
        };
        for (const auto& each : topics) {
            std::filesystem::create_directories(base + "/" + each.volume);
            std::ofstream(base + "/" + each.volume + "/" + each.location + ".topic") << each.text;
        }
        setenv("TESSALY_HELP", base.c_str(), 1);
    }
    void TearDown() override {
        Tool::TearDown();
        std::filesystem::remove_all(base);
    }

    static std::string many_paragraphs() {
        std::string text;
        for (int i = 0; i < 60; ++i) {
            text += "A paragraph of some length that the window wraps to its width.\n\n";
        }
        return text;
    }
    static Widget help(std::size_t index = 0) {
        const std::vector<Widget> open = help_dialogs();
        return index < open.size() ? open[index] : nullptr;
    }
    static std::string location(Widget dialog) {
        return dialog != nullptr ? help_dialog_location(help_dialog_of(dialog)) : "(no help)";
    }
    static std::string topic_title(Widget dialog) {
        return help_dialog_topic(help_dialog_of(dialog)).title;
    }
    static std::string text_of(Widget dialog) {
        return help_plain_text(help_dialog_topic(help_dialog_of(dialog)), 1000);
    }
    static const HELP_VIEW* view(Widget dialog) { return help_dialog_view(help_dialog_of(dialog)); }
    static Widget child(Widget dialog, const char* name) {
        return XtNameToWidget(dialog, (std::string("*") + name).c_str());
    }
    void push(Widget dialog, const char* name) { console.click(child(dialog, name)); }
    void click_link(Widget dialog, const char* text) {
        int x = 0;
        int y = 0;
        ASSERT_TRUE(help_view_link_at(view(dialog), text, &x, &y)) << text;
        console.click(help_view_text(view(dialog)), x, y);
    }
    bool wait_helps(std::size_t count) {
        return comes_true([=] { return help_dialogs().size() == count; });
    }
    // F1 in the list of ports and link stations.
    Widget help_on_pane() {
        XmProcessTraversal(node->links_root.draw_widget, XmTRAVERSE_CURRENT);
        console.key(F1);
        EXPECT_TRUE(wait_helps(1));
        EXPECT_EQ(location(help()), "connectivitypane");
        return help();
    }
    void close_all() {
        for (Widget dialog : help_dialogs()) {
            XtDestroyWidget(dialog);
        }
        console.wait_idle();
    }
};

std::string contents_of(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void set_resource(const std::string& line) {
    XrmDatabase database = XtScreenDatabase(gvga_screen);
    XrmPutLineResource(&database, line.c_str());
}

void write_script(const std::string& path, const std::string& text) {
    std::ofstream(path) << "#!/bin/sh\n" << text;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

TEST_F(Help, LinksAreFollowedByMouseAndKeysAndBackReturns) {
    Widget dialog = help_on_pane();
    EXPECT_FALSE(XtIsSensitive(child(dialog, "backButton")));
    click_link(dialog, "the second");
    EXPECT_EQ(location(dialog), "second");
    console.key(XK_Tab);
    EXPECT_EQ(help_view_current_link(view(dialog)), "further");
    console.key(XK_Return);
    EXPECT_EQ(location(dialog), "noded");
    push(dialog, "backButton");
    EXPECT_EQ(location(dialog), "second");
    XmProcessTraversal(help_view_text(view(dialog)), XmTRAVERSE_CURRENT);
    console.key(XK_BackSpace);
    EXPECT_EQ(location(dialog), "connectivitypane");
    EXPECT_FALSE(XtIsSensitive(child(dialog, "backButton")));
    console.key(XK_BackSpace); // nothing left
    EXPECT_EQ(location(dialog), "connectivitypane");

    // The way back leads to where the text was scrolled; the keyboard reaches what is out of sight.
    console.key(XK_End);
    const int scroll = help_view_scroll(view(dialog));
    EXPECT_GT(scroll, 500);
    click_link(dialog, "the last");
    EXPECT_EQ(help_view_scroll(view(dialog)), 0);
    push(dialog, "backButton");
    EXPECT_EQ(help_view_scroll(view(dialog)), scroll);
    console.key(XK_Home);
    EXPECT_EQ(help_view_scroll(view(dialog)), 0);
    console.key(XK_Page_Down);
    EXPECT_GT(help_view_scroll(view(dialog)), 50);
    console.key(XK_Tab); // the next from here
    EXPECT_EQ(help_view_current_link(view(dialog)), "the last");
    EXPECT_EQ(help_view_scroll(view(dialog)), scroll);
    console.key(XK_Tab, ShiftMask);
    EXPECT_EQ(help_view_current_link(view(dialog)), "gone");
    EXPECT_LT(help_view_scroll(view(dialog)), 50);
    console.key(XK_Escape);
    EXPECT_TRUE(wait_helps(0));
}

TEST_F(Help, LinksToOtherVolumesAndMoreOpenFurtherWindows) {
    Widget dialog = help_on_pane();
    click_link(dialog, "far away");
    ASSERT_TRUE(wait_helps(2));
    EXPECT_EQ(topic_title(help(1)), "Far");
    push(help(1), "closeButton");
    ASSERT_TRUE(wait_helps(1));
    click_link(dialog, "gone"); // there is no such topic
    EXPECT_NE(text_of(dialog).find("\"gone\""), std::string::npos);
    EXPECT_NE(contents_of(kit::scratch() + "/log").find("gone"), std::string::npos);
    click_link(dialog, "contents");
    EXPECT_EQ(location(dialog), "_hometopic");
    push(dialog, "moreButton");
    ASSERT_TRUE(wait_helps(2));
    EXPECT_NE(child(help(1), "indexButton"), nullptr);
    EXPECT_EQ(location(help(1)), "_hometopic");
    push(dialog, "closeButton"); // the contents stay
    ASSERT_TRUE(wait_helps(1));
    // The run ends with its help open.
}

TEST_F(Help, ManualPagesComeWhenTheyAreReady) {
    const std::string fifo = kit::scratch() + "/fifo";
    const std::string pid = kit::scratch() + "/pid";
    const std::string script = kit::scratch() + "/manual";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    write_script(script, "[ \"$1\" = demo ] || exit 16\necho $$ >" + pid + "\nread line <" + fifo +
                             "\nprintf 'D\\bDEMO(1)\\n%s\\n' \"$line\"\n");
    set_resource("*helpDialog.manualCommand: " + script);
    Widget dialog = help_on_pane();
    click_link(dialog, "demo");
    ASSERT_TRUE(wait_helps(2));
    EXPECT_EQ(topic_title(help(1)), "Manual page demo");
    EXPECT_TRUE(
        wait([&] { return !contents_of(pid).empty(); })); // and the console goes on meanwhile
    EXPECT_EQ(text_of(help(1)).find("DEMO"), std::string::npos);
    std::ofstream(fifo) << "the page\n";
    EXPECT_TRUE(wait([&] {
        return text_of(help(1)).find("DEMO(1)\nthe page") != std::string::npos;
    })) << text_of(help(1));
    push(help(1), "closeButton");
    ASSERT_TRUE(wait_helps(1));

    click_link(dialog, "nothing");
    ASSERT_TRUE(wait_helps(2));
    EXPECT_TRUE(wait([&] {
        return text_of(help(1)).find("There is no manual page nothing") != std::string::npos;
    })) << text_of(help(1));
    push(help(1), "closeButton");

    // Closed while the page is being formatted: the command goes with it.
    std::filesystem::remove(pid);
    click_link(dialog, "demo");
    ASSERT_TRUE(wait([&] { return !contents_of(pid).empty(); }));
    const pid_t child_process = std::stoi(contents_of(pid));
    ASSERT_TRUE(wait_helps(2));
    push(help(1), "closeButton");
    ASSERT_TRUE(wait_helps(1));
    EXPECT_TRUE(wait([=] {
        const std::string stat = contents_of("/proc/" + std::to_string(child_process) + "/stat");
        return stat.empty() || stat.find(") Z") != std::string::npos;
    }));
    push(dialog, "closeButton");
    EXPECT_TRUE(wait_helps(0));
    std::filesystem::remove(fifo);
}

TEST_F(Help, PrintingUsesTheCommandAndTellsItsFailure) {
    const std::string file = kit::scratch() + "/printed";
    set_resource("*helpDialog.printCommand: cat >" + file);
    vga_display_help_topic(gvga_main_dialog->widget, nullptr, "second", false, VGA_HELP_TOPIC);
    ASSERT_TRUE(wait_helps(1));
    push(help(), "printButton");
    EXPECT_TRUE(wait([&] { return contents_of(file) == "Another\n\nAnd further.\n"; }))
        << contents_of(file);
    EXPECT_TRUE(wait([&] { return XtIsSensitive(child(help(), "printButton")); }));
    EXPECT_EQ(XtNameToWidget(help(), "*helpPrintError"), nullptr);
    close_all();

    set_resource("*helpDialog.printCommand: echo no printer here >&2; exit 3");
    vga_display_help_topic(gvga_main_dialog->widget, nullptr, "second", false, VGA_HELP_TOPIC);
    ASSERT_TRUE(wait_helps(1));
    push(help(), "printButton");
    Widget box = nullptr;
    ASSERT_TRUE(wait([&] {
        box = XtNameToWidget(help(), "*helpPrintError");
        return box != nullptr && XtIsManaged(box);
    }));
    XmString text = nullptr;
    XtVaGetValues(box, XmNmessageString, &text, nullptr);
    auto* plain = static_cast<char*>(
        XmStringUnparse(text, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    EXPECT_NE(std::string(plain).find("no printer here"), std::string::npos) << plain;
    XtFree(plain);
    XmStringFree(text);
    ASSERT_TRUE(gets_keyboard(box));
    console.click(XmMessageBoxGetChild(box, XmDIALOG_OK_BUTTON));
    EXPECT_TRUE(wait([&] { return XtNameToWidget(help(), "*helpPrintError") == nullptr; }));
    close_all();
}

TEST_F(Help, OfADialogShowsItsLocationAndGoesWithIt) {
    stop_node();
    for (int round = 0; round < 2; ++round) { // the dialog is used again
        vga_display_node_dialog(node, false);
        ASSERT_TRUE(comes_true([&] { return node->gui_data.dialog != nullptr; }));
        auto* dialog = static_cast<vga_dialog*>(node->gui_data.dialog);
        console.key(F1);
        ASSERT_TRUE(wait_helps(1));
        EXPECT_EQ(location(help()), "noded");
        push(help(), "moreButton");
        ASSERT_TRUE(wait_helps(2));
        ASSERT_TRUE(vga_close_children(dialog, true, true));
        EXPECT_TRUE(wait_helps(0));
    }
    // By itself first, from the frame of its window, and then its dialog.
    vga_display_node_dialog(node, false);
    ASSERT_TRUE(comes_true([&] { return node->gui_data.dialog != nullptr; }));
    auto* dialog = static_cast<vga_dialog*>(node->gui_data.dialog);
    console.click(vga_dialog_button(dialog->widget, VGA_BUTTON_HELP));
    ASSERT_TRUE(wait_helps(1));
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(XtParent(help()));
    event.xclient.message_type = XInternAtom(gvga_display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(gvga_close_atom);
    XSendEvent(gvga_display, event.xclient.window, False, NoEventMask, &event);
    EXPECT_TRUE(wait_helps(0));
    EXPECT_TRUE(vga_close_children(dialog, true, true));
    console.wait_idle();
}

// The box keeps everything else from the operator, but not its help; and help outlives the answer.
TEST_F(Help, OfAMessageBoxShowsTheMessagesTag) {
    vga_display_error_dialog(gvga_main_dialog, 208, "dlgfail", nullptr, 0, "");
    ASSERT_TRUE(wait([] { return !CONSOLE::message().empty(); }));
    console.wait_idle();
    ASSERT_TRUE(console.answer("Help"));
    ASSERT_TRUE(wait_helps(1));
    Widget dialog = help();
    EXPECT_EQ(location(dialog), "dlgfail");
    click_link(dialog, "the second");
    EXPECT_EQ(location(dialog), "second");
    EXPECT_FALSE(CONSOLE::message().empty());
    console.click(XmMessageBoxGetChild(gvga_main_dialog->modal_dlg.dialog, XmDIALOG_OK_BUTTON));
    EXPECT_TRUE(comes_true([] { return CONSOLE::message().empty(); }));
    ASSERT_EQ(help_dialogs().size(), 1u);
    push(dialog, "backButton");
    EXPECT_EQ(location(dialog), "dlgfail");
    console.click(console.widget("nodewMenuHelpCascade")); // nothing is held back any more
    console.click(console.widget("nodewMenuHelpHelp"));
    ASSERT_TRUE(wait_helps(2));
    push(help(1), "closeButton");
    ASSERT_TRUE(wait_helps(1));
    push(dialog, "closeButton");
    EXPECT_TRUE(wait_helps(0));
}

TEST_F(Help, MenuOpensContentsIndexAndHelpOnHelp) {
    const auto rows = [](Widget dialog) {
        int count = 0;
        XmStringTable items = nullptr;
        XtVaGetValues(child(dialog, "helpList"), XmNitemCount, &count, XmNitems, &items, nullptr);
        std::string result;
        for (int i = 0; i < count; ++i) {
            auto* plain = static_cast<char*>(XmStringUnparse(
                items[i], nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
            result += std::string(plain) + "|";
            XtFree(plain);
        }
        return result;
    };
    const auto choose = [&](const char* item) {
        console.click(console.widget("nodewMenuHelpCascade"));
        console.click(console.widget(item));
    };
    choose("nodewMenuHelpContents");
    ASSERT_TRUE(wait_helps(1));
    EXPECT_EQ(rows(help()), "Group|   Node|   Second|");
    push(help(), "indexButton");
    EXPECT_EQ(rows(help()), "A message|Another|Connectivity|Node parameters|");
    console.key(XK_Down); // the keyboard is in the list
    EXPECT_EQ(location(help()), "second");
    push(help(), "contentsButton");
    EXPECT_EQ(rows(help()), "Group|   Node|   Second|");
    push(help(), "backButton");
    EXPECT_EQ(location(help()), "_hometopic");
    push(help(), "closeButton");
    EXPECT_TRUE(wait_helps(0));

    choose("nodewMenuHelpIndex");
    ASSERT_TRUE(wait_helps(1));
    EXPECT_EQ(rows(help()), "A message|Another|Connectivity|Node parameters|");
    console.key(XK_Escape);
    EXPECT_TRUE(wait_helps(0));

    choose("nodewMenuHelpHelp");
    ASSERT_TRUE(wait_helps(1));
    EXPECT_EQ(topic_title(help()), "On help");
    EXPECT_EQ(rows(help()), "   Far|");
    console.key(XK_Escape);
    EXPECT_TRUE(wait_helps(0));
}

TEST_F(Help, TitlesNameTheLocationInDisplayNamesMode) {
    const auto title = [&](const char* location) {
        vga_help_cb(gvga_main_dialog->widget, const_cast<char*>(location), nullptr);
        char* text = nullptr;
        XtVaGetValues(XtParent(help()), XmNtitle, &text, nullptr);
        const std::string result = text;
        close_all();
        return result;
    };
    EXPECT_EQ(title("noded"), "Help");
    gvga_display_names = 1;
    EXPECT_EQ(title("noded"), "noded: Help");
    gvga_display_names = 0;
}

TEST_F(Help, AboutBoxShowsTheVersionOnceAndItsHelpIsTheContents) {
    vga_menu_help_about(gvga_main_dialog->widget, nullptr, nullptr);
    console.wait_idle();
    Widget version = console.widget("aboutVersionLabel");
    ASSERT_NE(version, nullptr);
    EXPECT_TRUE(label(version).starts_with("Tessaly (64 bit), version ")) << label(version);
    vga_display_about_box(gvga_main_dialog);
    int open = 0;
    vga_for_each_open_dialog(
        [&](vga_dialog* dialog) { open += dialog->dialog_id == VGA_UID_ABOUT_BOX; });
    EXPECT_EQ(open, 1);
    console.key(F1);
    ASSERT_TRUE(wait_helps(1));
    EXPECT_EQ(location(help()), "_hometopic");
    push(help(), "closeButton"); // can be used although the box is modal
    EXPECT_TRUE(wait_helps(0));
    for (const KeySym key : {XK_Return, XK_Escape}) {
        vga_display_about_box(gvga_main_dialog);
        console.wait_idle();
        console.key(key);
        EXPECT_TRUE(comes_true([&] { return console.widget("aboutVersionLabel") == nullptr; }))
            << key;
    }
}

// Which labels of the start help show: "node", "domain", "both" or "none".
std::string intro_of(CONSOLE& console) {
    int node_labels = 0;
    int domain_labels = 0;
    for (int i = 1; i <= VGA_INTRO_LABEL_COUNT; ++i) {
        const std::string number = std::to_string(i);
        Widget of_node = console.widget("shlpdNodeLabel" + number);
        Widget of_domain = console.widget("shlpdCSLabel" + number);
        node_labels += of_node != nullptr && XtIsManaged(of_node);
        domain_labels += of_domain != nullptr && XtIsManaged(of_domain);
    }
    return node_labels == VGA_INTRO_LABEL_COUNT && domain_labels == 0   ? "node"
           : node_labels == 0 && domain_labels == VGA_INTRO_LABEL_COUNT ? "domain"
           : node_labels == 0 && domain_labels == 0                     ? "none"
                                                                        : "both";
}

class StartHelp : public Help {
protected:
    using Help::Help;
    void SetUp() override { ASSERT_TRUE(console.started() && console.wait_built()); }
    void expect_closed_by_escape() {
        console.wait_idle();
        console.key(XK_Escape);
        EXPECT_TRUE(comes_true([&] { return intro_of(console) == "none"; }));
    }
};

class StartHelpOfNode : public StartHelp {
protected:
    StartHelpOfNode() : StartHelp({"--domain", TESSALY_SOURCE_DIR "/data/domains/empty.toml"}) {}
};

TEST_F(StartHelpOfNode, ComesWithItsWindow) {
    EXPECT_EQ(intro_of(console), "node");
    XmString step = nullptr;
    XtVaGetValues(console.widget("shlpdNodeLabel2"), XmNlabelString, &step, nullptr);
    EXPECT_EQ(XmStringLineCount(step), 2);
    XmStringFree(step);
    console.key(F1);
    EXPECT_TRUE(wait_helps(1));
    EXPECT_EQ(location(help()), "shlpd");
    push(help(), "closeButton");
    EXPECT_TRUE(wait_helps(0));
    expect_closed_by_escape();
}

class StartHelpOfDomain : public StartHelp {
protected:
    StartHelpOfDomain()
        : StartHelp({"--domain", TESSALY_SOURCE_DIR "/data/domains/enterprise.toml"}) {}
};

TEST_F(StartHelpOfDomain, ComesAtTheStartAndWithTheWindowOfANodeThatIsNotConfigured) {
    EXPECT_EQ(intro_of(console), "domain");
    expect_closed_by_escape();
    int introduced = 0;
    for (auto* each = ntl_avl_first<vga_node>(gvga_system->node_tree); each != nullptr;
         each = static_cast<vga_node*>(ntl_avl_next(&each->node))) {
        const bool unconfigured = each->node_state == VGA_NODE_STATE_UNCONFIGURED;
        if (!unconfigured && each->node_state != VGA_NODE_STATE_STOPPED) {
            continue;
        }
        introduced += unconfigured;
        ASSERT_TRUE(vga_display_node_window(each, true));
        console.wait_idle();
        EXPECT_EQ(intro_of(console), unconfigured ? "node" : "none");
        vga_close_children(each->gui_data.node_window, true, true);
        EXPECT_EQ(intro_of(console), "none");
    }
    EXPECT_EQ(introduced, 1);
}

} // namespace
