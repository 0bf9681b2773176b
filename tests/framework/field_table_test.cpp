#include "framework/fixture.h"

#include "common/names.h"
#include "nof/vcb.h"
#include "shell/messages.h"
#include "ui/framework/field_table.h"

#include <Xm/XmAll.h>

#include <cstring>
#include <string>
#include <utility>

namespace {

using enum VGA_FIELD_KIND;

#pragma pack(push, 1)
struct IMAGE {
    char text[8];
    NB_NAME8L local;
    NB_NAME8E name;
    NB_FQNAME fq_name;
    NB_BE32 node_id;
    NB_USHORT number;
    NB_ULONG wide;
    NB_BE16 big;
    NB_BYTE hex[3];
    NB_BYTE byte;
    NB_USHORT count;
    NB_BYTE list[24];
};
#pragma pack(pop)

struct TEST_FORM {
    vga_form form;
    Widget first, second, label, toggles[3];
    Widget menu, entries[3], list;
};

#define FORM_WIDGET(member, suffix) VGA_WIDGET(TEST_FORM, member, suffix)
constexpr auto first = FORM_WIDGET(first, "First");
constexpr auto second = FORM_WIDGET(second, "Second");

constexpr VGA_FIELD_CHOICE toggles[] = {{FORM_WIDGET(toggles[0], "T0"), 0},
                                        {FORM_WIDGET(toggles[1], "T1"), 2},
                                        {FORM_WIDGET(toggles[2], "T2"), 5}};

bool is_first_set(TEST_FORM* form) {
    return XmToggleButtonGetState(form->toggles[0]);
}
VGA_FIELD_RANGE up_to_big(TEST_FORM*, IMAGE* image) {
    return {1, image->big.get()};
}
bool must_be_seven(TEST_FORM* form, IMAGE* image) {
    return image->number == 7 || vga_refuse_field(&form->form.common, form->first, {404, "check"});
}

// Fields of texts; empty: the message for an empty one, 0: it may be empty.
constexpr VGA_FIELD row_of(VGA_FIELD_KIND kind, VGA_FIELD_PLACE place, int empty = 401) {
    VGA_FIELD field{.kind = kind, .widget = first, .place = place};
    if (kind == FQ_NAME || kind == FQ_WILDCARD || kind == NODE_ID) {
        field.second = second;
    }
    field.empty = empty;
    field.range = 403;
    field.bad = 402;
    return field;
}
constexpr VGA_FIELD decimal(VGA_FIELD_PLACE place, NB_ULONG minimum, NB_ULONG maximum,
                            int empty = 401) {
    VGA_FIELD field = row_of(DECIMAL, place, empty);
    field.minimum = minimum;
    field.maximum = maximum;
    field.empty_value = 0xFFFF;
    return field;
}
constexpr VGA_FIELD changed(VGA_FIELD field, void (*change)(VGA_FIELD&)) {
    change(field);
    return field;
}
constexpr VGA_FIELD text_row = changed(row_of(LOCAL_TEXT, VGA_PLACE(IMAGE, text), 0),
                                       [](VGA_FIELD& field) { field.clear_next = true; });
constexpr VGA_FIELD local_row = row_of(LOCAL_NAME, VGA_PLACE(IMAGE, local));
constexpr VGA_FIELD name_row = row_of(NAME_A, VGA_PLACE(IMAGE, name));
constexpr VGA_FIELD fq_row = row_of(FQ_NAME, VGA_PLACE(IMAGE, fq_name));
constexpr VGA_FIELD wildcard_row = row_of(FQ_WILDCARD, VGA_PLACE(IMAGE, fq_name));
constexpr VGA_FIELD id_row = row_of(NODE_ID, VGA_PLACE(IMAGE, node_id));
constexpr VGA_FIELD optional_id_row = row_of(NODE_ID, VGA_PLACE(IMAGE, node_id), 0);
constexpr VGA_FIELD number_row = decimal(VGA_PLACE(IMAGE, number), 1, 1000);
constexpr VGA_FIELD wide_row = decimal(VGA_PLACE(IMAGE, wide), 1, 4'000'000'000);
constexpr VGA_FIELD optional_row = decimal(VGA_PLACE(IMAGE, number), 0, 1000, 0);
constexpr VGA_FIELD bounded_row =
    changed(number_row, [](VGA_FIELD& field) { field.bounds = VGA_TYPED<up_to_big>::call; });
constexpr VGA_FIELD big_row = changed(decimal(VGA_PLACE(IMAGE, big), 0, 65535),
                                      [](VGA_FIELD& field) { field.big_endian = true; });
constexpr VGA_FIELD checked_row =
    changed(number_row, [](VGA_FIELD& field) { field.check = VGA_TYPED<must_be_seven>::call; });
constexpr VGA_FIELD hex_row = row_of(HEX, VGA_PLACE(IMAGE, hex));
constexpr VGA_FIELD unused_row{.kind = LOCAL_NAME,
                               .widget = first,
                               .label = FORM_WIDGET(label, "Label"),
                               .place = VGA_PLACE(IMAGE, local),
                               .empty = 401,
                               .hide_unused = true,
                               .applies = VGA_TYPED<is_first_set>::call};
constexpr VGA_FIELD toggle_row{.kind = TOGGLE,
                               .widget = FORM_WIDGET(toggles[0], "T0"),
                               .place = VGA_PLACE(IMAGE, byte),
                               .on = 0,
                               .off = 1};
constexpr VGA_FIELD bits_row{.kind = TOGGLE,
                             .widget = FORM_WIDGET(toggles[0], "T0"),
                             .place = VGA_PLACE(IMAGE, byte),
                             .mask = 4};
constexpr VGA_FIELD radio_row{.kind = RADIO, .place = VGA_PLACE(IMAGE, byte), .choices = toggles};
constexpr VGA_FIELD list_row{.kind = LIST,
                             .widget = FORM_WIDGET(list, "List"),
                             .place = VGA_PLACE(IMAGE, list),
                             .range = 403,
                             .item_size = 8,
                             .ebcdic_items = true,
                             .count = VGA_PLACE(IMAGE, count)};

class FieldTable : public FrameworkTest {
protected:
    void SetUp() override {
        FrameworkTest::SetUp();
        Widget work = vga_name_widget(main_window->widget, "syswWork", nullptr);
        board = XtVaCreateManagedWidget("board", xmRowColumnWidgetClass, work, nullptr);
        Widget box = XtVaCreateManagedWidget("box", xmRowColumnWidgetClass, board, nullptr);
        for (const char* name : {"syswFirst", "syswSecond"}) {
            XtVaCreateManagedWidget(name, xmTextFieldWidgetClass, box, nullptr);
        }
        XtVaCreateManagedWidget("syswLabel", xmLabelWidgetClass, board, nullptr);
        for (const char* name : {"syswT0", "syswT1", "syswT2"}) {
            XtVaCreateManagedWidget(name, xmToggleButtonWidgetClass, board, nullptr);
        }
        XtVaCreateManagedWidget("syswList", xmListWidgetClass, board, nullptr);
        settle();
    }
    void TearDown() override {
        XtDestroyWidget(board);
        FrameworkTest::TearDown();
    }

    // Makes the main window the form of one row.
    void use(const VGA_FIELD& field) {
        row = {"own", {&field, 1}, {}, nullptr};
        form = reinterpret_cast<TEST_FORM*>(main_window);
        std::memset(&form->form.row, 0, sizeof *form - offsetof(TEST_FORM, form.row));
        ASSERT_TRUE(vga_get_form_widgets(main_window, row));
        form->form.editable = true;
    }
    void type(const char* one, const char* two = "") {
        XmTextFieldSetString(form->first, const_cast<char*>(one));
        if (form->second != nullptr) {
            XmTextFieldSetString(form->second, const_cast<char*>(two));
        }
    }
    static std::string text(Widget field) {
        char* value = XmTextFieldGetString(field);
        const std::string result = value;
        XtFree(value);
        return result;
    }
    // Reads; the help tag of the message that shows, or "".
    std::string read(IMAGE* image) {
        const bool success = vga_read_fields(&form->form, image);
        settle();
        const vga_modal_dlg& box = main_window->modal_dlg;
        const std::string tag = box.open ? box.help_tag : "";
        EXPECT_EQ(success, tag.empty());
        vga_close_modal_dialog(main_window);
        return tag;
    }

    Widget board = nullptr;
    VGA_FORM row{};
    TEST_FORM* form = nullptr;
};

TEST_F(FieldTable, TextsAreReadAndShown) {
    const struct {
        const char* what;
        const VGA_FIELD* row;
        const char* typed[2];
        const char* refused;  // "": read
        const char* shown[2]; // "focus" of one that is refused: it is the second field's fault
    } cases[] = {
        {"text that fits", &text_row, {"seven77"}, "", {"seven77"}},
        {"text too long by one", &text_row, {"eight888"}, "", {"eight88"}},
        {"empty text", &text_row, {""}, "", {""}},
        {"name", &local_row, {"alias"}, "", {"alias"}},
        {"full name", &local_row, {"ALIASES8"}, "", {"ALIASES8"}},
        {"no name", &local_row, {""}, "own", {}},
        {"EBCDIC name", &name_row, {"LU$01"}, "", {"LU$01"}},
        {"name of type AE only", &name_row, {"lu01"}, "own", {}},
        {"qualified name", &fq_row, {"NET", "NAME"}, "", {"NET", "NAME"}},
        {"half a name", &fq_row, {"NET", ""}, "own", {}},
        {"network alone", &wildcard_row, {"NET", ""}, "", {"NET", ""}},
        {"nothing", &wildcard_row, {"", ""}, "", {"", ""}},
        {"name without network", &wildcard_row, {"", "NAME"}, "own", {}},
        {"node identifier", &id_row, {"05D", "00a12"}, "", {"05d", "00a12"}},
        {"short identifier", &id_row, {"05", "00a12"}, "own", {}},
        {"no identifier", &id_row, {"", ""}, "own", {}},
        {"identifier of zeros", &optional_id_row, {"", ""}, "", {"000", "00000"}},
        {"identifier without its block", &optional_id_row, {"", "00a12"}, "own", {}},
        {"short second half", &optional_id_row, {"05D", "0a12"}, "own", {nullptr, "focus"}},
        {"no second half", &optional_id_row, {"05D", ""}, "own", {nullptr, "focus"}},
        {"number", &number_row, {"1000"}, "", {"1000"}},
        {"number beyond", &number_row, {"1001"}, "own", {}},
        {"number below", &number_row, {"0"}, "own", {}},
        {"no number", &number_row, {""}, "own", {}},
        {"letters behind a number", &number_row, {"12x4"}, "", {"12"}},
        {"no digit", &number_row, {"x"}, "own", {}},
        {"widest number", &wide_row, {"4000000000"}, "", {"4000000000"}},
        {"number beyond the widest", &wide_row, {"4000000001"}, "own", {}},
        {"number below 0", &wide_row, {"-1"}, "own", {}},
        {"number that would wrap round", &wide_row, {"4294967297"}, "own", {}},
        {"number of many digits", &wide_row, {"99999999999999999999"}, "own", {}},
        {"optional number", &optional_row, {"0"}, "", {"0"}},
        {"no optional number", &optional_row, {""}, "", {""}},
        {"big-endian", &big_row, {"513"}, "", {"513"}},
        {"hexadecimal", &hex_row, {"00FFa0"}, "", {"00ffa0"}},
        {"hexadecimal too short", &hex_row, {"00FF"}, "own", {}},
        {"hexadecimal odd", &hex_row, {"00F"}, "own", {}},
        {"no hexadecimal", &hex_row, {""}, "own", {}},
        {"check that holds", &checked_row, {"7"}, "", {"7"}},
        {"check that fails", &checked_row, {"8"}, "check", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        use(*c.row);
        IMAGE image;
        std::memset(&image, 0x77, sizeof image);
        type(c.typed[0], c.typed[1] != nullptr ? c.typed[1] : "");
        EXPECT_EQ(read(&image), c.refused);
        if (c.refused[0] != '\0') {
            EXPECT_EQ(XmGetFocusWidget(main_window->shell),
                      c.shown[1] != nullptr ? form->second : form->first);
            continue;
        }
        type("?", "?");
        vga_show_fields(&form->form, &image);
        EXPECT_EQ(text(form->first), c.shown[0]);
        if (c.shown[1] != nullptr) {
            EXPECT_EQ(text(form->second), c.shown[1]);
        }
    }
}

TEST_F(FieldTable, BytesAreThoseOfTheNode) {
    IMAGE image;
    std::memset(&image, 0x77, sizeof image);
    const auto fill = [&](const VGA_FIELD& field, const char* one, const char* two = "") {
        use(field);
        type(one, two);
        EXPECT_EQ(read(&image), "");
    };
    fill(text_row, "ab");
    fill(local_row, "cd");
    fill(name_row, "A");
    fill(fq_row, "A", "B");
    fill(id_row, "05d", "10001");
    fill(big_row, "258");
    fill(optional_row, "");
    EXPECT_EQ(std::memcmp(image.text, "ab\0\0\0\0\0\0", 8), 0);
    EXPECT_EQ(std::memcmp(image.local, "cd      ", 8), 0);
    EXPECT_EQ(std::memcmp(image.name, "\xC1\x40\x40\x40\x40\x40\x40\x40", 8), 0);
    EXPECT_EQ(std::memcmp(image.fq_name, "\xC1\x4B\xC2\x40", 4), 0);
    EXPECT_EQ(image.fq_name[16], EBCDIC_BLANK);
    EXPECT_EQ(image.node_id.get(), 0x05D10001u);
    EXPECT_EQ(image.big.bytes[0], 1);
    EXPECT_EQ(image.number, 0xFFFF);
    EXPECT_EQ(image.hex[0], 0x77) << "beyond the fields that were read";
}

TEST_F(FieldTable, BoundsMayDependOnWhatWasReadAndAreTold) {
    use(bounded_row);
    const char* const kept = std::exchange(gvga_messages[403], "%1 to %2");
    IMAGE image{};
    image.big.set(10);
    type("10");
    EXPECT_EQ(read(&image), "");
    type("11");
    EXPECT_FALSE(vga_read_fields(&form->form, &image));
    settle();
    EXPECT_EQ(message_of(main_window), "1 to 10");
    vga_close_modal_dialog(main_window);
    gvga_messages[403] = kept;
}

TEST_F(FieldTable, ChoicesAreCodes) {
    IMAGE image{};
    image.byte = 0;
    use(toggle_row);
    vga_show_fields(&form->form, &image);
    EXPECT_TRUE(XmToggleButtonGetState(form->toggles[0]));
    XmToggleButtonSetState(form->toggles[0], False, False);
    EXPECT_EQ(read(&image), "");
    EXPECT_EQ(image.byte, 1);

    image.byte = 0xA4;
    use(bits_row);
    vga_show_fields(&form->form, &image);
    EXPECT_TRUE(XmToggleButtonGetState(form->toggles[0]));
    XmToggleButtonSetState(form->toggles[0], False, False);
    EXPECT_EQ(read(&image), "");
    EXPECT_EQ(image.byte, 0xA0) << "the other bits stay";

    image.byte = 5;
    use(radio_row);
    vga_show_fields(&form->form, &image);
    EXPECT_TRUE(XmToggleButtonGetState(form->toggles[2]));
    EXPECT_FALSE(XmToggleButtonGetState(form->toggles[0]));
    XmToggleButtonSetState(form->toggles[2], False, False);
    XmToggleButtonSetState(form->toggles[1], True, False);
    EXPECT_EQ(read(&image), "");
    EXPECT_EQ(image.byte, 2);
}

TEST_F(FieldTable, ListsHoldNames) {
    IMAGE image{};
    image.count = 2;
    van_ascii_to_ebcdic(image.list, "LU01", 8);
    van_ascii_to_ebcdic(image.list + 8, "LU02", 8);
    use(list_row);
    vga_show_fields(&form->form, &image);
    XmString item = XmStringCreateLocalized(const_cast<char*>("LU03"));
    XmListAddItem(form->list, item, 1);
    EXPECT_EQ(read(&image), "");
    EXPECT_EQ(image.count, 3);
    NB_BYTE expected[8];
    van_ascii_to_ebcdic(expected, "LU03", 8);
    EXPECT_EQ(std::memcmp(image.list, expected, 8), 0);
    XmListAddItem(form->list, item, 1);
    EXPECT_EQ(read(&image), "own") << "more than there is room for";
    XmStringFree(item);
}

TEST_F(FieldTable, ARowThatDoesNotApplyIsNeitherShownNorRead) {
    use(unused_row);
    IMAGE image{};
    form->toggles[0] = vga_name_widget(main_window->widget, "syswT0", nullptr);
    XmToggleButtonSetState(form->toggles[0], False, False);
    vga_adjust_fields(&form->form);
    EXPECT_FALSE(XtIsManaged(form->first) || XtIsManaged(form->label));
    type("");
    EXPECT_EQ(read(&image), "");
    EXPECT_EQ(image.local[0], 0);
    XmToggleButtonSetState(form->toggles[0], True, False);
    vga_adjust_fields(&form->form);
    EXPECT_TRUE(XtIsManaged(form->first) && XtIsSensitive(form->first));
    EXPECT_EQ(read(&image), "own");
}

TEST_F(FieldTable, ViewingAndTheNextEntry) {
    use(text_row);
    type("abc");
    vga_edit_fields(&form->form, false);
    EXPECT_FALSE(XmTextFieldGetEditable(form->first));
    EXPECT_TRUE(XtIsSensitive(form->first)) << "it can still be selected";
    vga_edit_fields(&form->form, true);
    EXPECT_TRUE(XmTextFieldGetEditable(form->first));
    vga_clear_fields(&form->form);
    EXPECT_EQ(text(form->first), "");
    use(toggle_row);
    vga_edit_fields(&form->form, false);
    EXPECT_FALSE(XtIsSensitive(form->toggles[0]));
    vga_edit_fields(&form->form, true);
    EXPECT_TRUE(XtIsSensitive(form->toggles[0]));
}

} // namespace
