// Menu bars with their pull-down menus, and option menus.
#include "build.h"

#include <cctype>

namespace formc {

namespace {

// "Ctrl+Shift+S" as the toolkit writes it: "Ctrl Shift<Key>s".
std::string accelerator_event(const Statement& s, std::string_view keys) {
    std::string modifiers;
    for (size_t plus; (plus = keys.find('+')) != std::string_view::npos;
         keys.remove_prefix(plus + 1)) {
        const std::string_view modifier = keys.substr(0, plus);
        if (modifier != "Ctrl" && modifier != "Shift" && modifier != "Alt")
            s.fail("'" + std::string(modifier) + "' is no modifier (Ctrl, Shift, Alt)");
        modifiers += (modifiers.empty() ? "" : " ") + std::string(modifier);
    }
    if (keys.empty())
        s.fail("the accelerator has no key");
    std::string key(keys);
    if (key.size() == 1)
        key[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(key[0])));
    return modifiers + "<Key>" + key;
}

// `accel` is a key the menu reacts to; `key` only shows a key that another widget takes (the lists
// take Delete).
void set_accelerator(Builder& b, const Statement& s, Object& item) {
    const std::string shown = s.text("key");
    const std::string keys = s.text("accel");
    if (!shown.empty())
        item.set("XmNacceleratorText", uil_label(shown));
    if (keys.empty())
        return;
    const auto [known, is_new] = b.accelerators.emplace(keys, s.line);
    if (!is_new)
        s.fail("the accelerator " + keys + " is used before, in line " +
               std::to_string(known->second));
    item.set("XmNaccelerator", uil_string(accelerator_event(s, keys)));
    item.set("XmNacceleratorText", uil_label(keys));
}

void add_item(Builder& b, const Statement& s, Object& pane, std::map<char, int>& mnemonics);

Object& build_cascade(Builder& b, const Statement& s, std::map<char, int>& mnemonics) {
    if (!s.label || !caption(s).mnemonic)
        s.fail("a menu needs a label with a mnemonic, as in \"&File\"");
    Object& cascade = b.make_named(s, "XmCascadeButton");
    set_caption(s, cascade, mnemonics);
    Object& pane = b.make(s, "XmPulldownMenu", s.text("pane"));
    std::map<char, int> inside;
    for (const Statement& entry : s.body)
        add_item(b, entry, pane, inside);
    cascade.children.push_back(&pane);
    s.check_all_used();
    return cascade;
}

void add_item(Builder& b, const Statement& s, Object& pane, std::map<char, int>& mnemonics) {
    if (s.keyword == "menu") {
        pane.children.push_back(&build_cascade(b, s, mnemonics));
        return;
    }
    if (s.keyword == "separator") {
        pane.children.push_back(&b.make_named(s, "XmSeparator"));
    } else if (s.keyword == "item" || s.keyword == "check") {
        if (!s.label || !caption(s).mnemonic)
            s.fail("a menu entry needs a label with a mnemonic, as in \"&Open\"");
        const bool check = s.keyword == "check";
        Object& item = b.make_named(s, check ? "XmToggleButton" : "XmPushButton");
        set_caption(s, item, mnemonics);
        set_accelerator(b, s, item);
        pane.children.push_back(&item);
    } else {
        s.fail("a menu has no '" + s.keyword + "'");
    }
    s.check_all_used();
}

} // namespace

Object& build_menu_bar(Builder& b, const Statement& s) {
    Object& bar = b.make_named(s, "XmMenuBar");
    std::map<char, int> mnemonics;
    for (const Statement& entry : s.body) {
        if (entry.keyword != "menu")
            entry.fail("a menu bar has no '" + entry.keyword + "'");
        const bool at_the_right = entry.flag("right");
        Object& cascade = build_cascade(b, entry, mnemonics);
        bar.children.push_back(&cascade);
        if (at_the_right)
            bar.set("XmNmenuHelpWidget", cascade.name);
    }
    s.check_all_used();
    return bar;
}

Object& build_option_menu(Builder& b, const Statement& s) {
    Object& menu = b.make_named(s, "XmOptionMenu");
    menu.set("XmNlabelString", uil_label(""))
        .set("XmNmarginWidth", 0)
        .set("XmNmarginHeight", 0)
        .set("XmNspacing", 0);
    Object& pane = b.make(s, "XmPulldownMenu", s.text("pane"));
    if (s.body.empty())
        s.fail("an option menu needs items");
    std::map<char, int> mnemonics;
    for (const Statement& entry : s.body) {
        if (entry.keyword != "item" || !entry.label)
            entry.fail("an option menu holds items with a label");
        Object& item = b.make_named(entry, "XmPushButton");
        set_caption(entry, item, mnemonics);
        pane.children.push_back(&item);
        entry.check_all_used();
    }
    menu.children.push_back(&pane);
    return menu;
}

} // namespace formc
