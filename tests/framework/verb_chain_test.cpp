#include "framework/fixture.h"

#include "nof/lu62.h"
#include "shell/verb_queue.h"
#include "ui/framework/verb_chain.h"

namespace {

struct TEST_FORM {
    vga_form form;
    Widget name;
    bool defined; // the record has a definition
    int deletes;
    int closed_runs;
};

void prepare(TEST_FORM*, DEFINE_LOCAL_LU*) {}
NB_HANDLE target(TEST_FORM*) {
    return 0; // nobody: the completions are the test's
}
bool replaces(TEST_FORM* form, DEFINE_LOCAL_LU*) {
    return form->defined;
}
bool delete_old(TEST_FORM* form) {
    ++form->deletes;
    return true;
}
void deleted(TEST_FORM* form, VGA_COMPLETION*) {
    form->defined = false;
    vga_chain_continue(&form->form);
}
void defined(TEST_FORM* form, VGA_COMPLETION*) {
    form->defined = true;
}
void finished(TEST_FORM* form, vga_dialog*) {
    ++form->closed_runs;
}

constexpr VGA_CHAIN_STEP steps[] = {
    {NAP_DELETE_LOCAL_LU, VGA_TYPED<deleted>::call},
    {NAP_DEFINE_LOCAL_LU, VGA_TYPED<defined>::call},
};
constexpr VGA_CHAIN_FAILURE failures[] = {{NAP_DEFINE_LOCAL_LU, 0x0100, 5, 404, "own"}};
constexpr VGA_CHAIN chain{.opcode = NAP_DEFINE_LOCAL_LU,
                          .size = sizeof(DEFINE_LOCAL_LU),
                          .image = 0,
                          .checks = 0,
                          .completion = vga_chain_completed,
                          .prepare = VGA_TYPED<prepare>::call,
                          .target = VGA_TYPED<target>::call,
                          .replaces = VGA_TYPED<replaces>::call,
                          .delete_old = VGA_TYPED<delete_old>::call,
                          .steps = steps,
                          .failures = failures,
                          .finished = VGA_TYPED<finished>::call};
constexpr VGA_FIELD fields[] = {
    {.kind = VGA_FIELD_KIND::NAME_A,
     .widget = VGA_WIDGET(TEST_FORM, name, "Name"),
     .place = VGA_PLACE(DEFINE_LOCAL_LU, lu_name)},
};
constexpr VGA_FORM form_row{"own", fields, {}, nullptr, &chain};

class VerbChain : public FrameworkTest {
protected:
    void SetUp() override {
        FrameworkTest::SetUp();
        vga_dialog* dialog = show(VGA_UID_LU62_DIALOG, main_window);
        ASSERT_NE(dialog, nullptr);
        form = reinterpret_cast<TEST_FORM*>(dialog);
        form->form.run = {};
        form->defined = true;
        form->deletes = form->closed_runs = 0;
        ASSERT_TRUE(vga_get_form_widgets(dialog, form_row));
    }
    // The answer of the node to the dialog's verb.
    void complete(NB_USHORT opcode, NB_USHORT primary = 0, NB_ULONG secondary = 0) {
        vga_purge_verb_queue(0, 0, nullptr, form->form.common.handle, nullptr);
        DEFINE_LOCAL_LU vcb{};
        vcb.header.opcode = opcode;
        vcb.header.primary_rc = primary;
        vcb.header.secondary_rc = secondary;
        VGA_COMPLETION completion{0, &vcb, form->form.common.handle};
        vga_chain_completed(&completion);
    }
    bool usable() {
        return XtIsSensitive(vga_dialog_button(form->form.common.widget, VGA_BUTTON_OK));
    }
    TEST_FORM* form = nullptr;
};

TEST_F(VerbChain, ADefineThatFailsAfterItsDeleteIsSentAloneTheNextTime) {
    vga_chain_start(&form->form, false);
    EXPECT_FALSE(usable());
    vga_chain_start(&form->form, false); // while verbs are outstanding
    EXPECT_EQ(form->deletes, 1);
    complete(NAP_DELETE_LOCAL_LU);
    EXPECT_EQ(form->form.run.outstanding, 1) << "the define follows";
    complete(NAP_DEFINE_LOCAL_LU, 0x0100, 5);
    EXPECT_STREQ(form->form.common.modal_dlg.help_tag, "own");
    EXPECT_TRUE(form->form.common.open && usable());
    EXPECT_EQ(form->closed_runs, 0);
    vga_close_modal_dialog(&form->form.common);

    vga_chain_start(&form->form, false);
    EXPECT_EQ(form->deletes, 1) << "there is nothing to delete any more";
    complete(NAP_DEFINE_LOCAL_LU);
    EXPECT_FALSE(form->form.common.open);
    EXPECT_EQ(form->closed_runs, 1);
}

TEST_F(VerbChain, AStaleCompletionChangesNothing) {
    form->defined = false;
    complete(NAP_DEFINE_LOCAL_LU);
    EXPECT_FALSE(form->defined);
    EXPECT_EQ(form->closed_runs, 0);
}

} // namespace
