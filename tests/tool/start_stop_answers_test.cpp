#include "tool/fixture.h"

#include "nof/lu62.h"
#include "verbs/manage.h"

// Every answer of a node to a start or stop, and what the console makes of it.
namespace {

constexpr NB_BYTE INACTIVE = NOF_STATE_INACTIVE, ACTIVE = NOF_STATE_ACTIVE,
                  STARTING = NOF_STATE_START_PENDING, STOPPING = NOF_STATE_STOP_PENDING;

struct Answer {
    NB_USHORT primary;
    NB_ULONG secondary;
    int state;   // afterwards
    int message; // 0: none
    enum { PLAIN, OWNER, ADAPTER, CODES } arguments = PLAIN;
};
constexpr Answer GONE_SOFTWARE{0x03F0, 0x5542, 0, 0};

class Answers : public tool::Tool {
protected:
    // Carries a verb out once per answer. state: where the result is seen; it is `before` when the
    // verb goes out.
    void expect(const char* verb, const std::string& name, NB_BYTE* state, NB_BYTE before,
                const std::function<void()>& send, std::vector<Answer> answers,
                const std::string& owner = "", NB_ULONG adapter = 0) {
        for (const Answer& answer : answers) {
            char codes[64];
            std::snprintf(codes, sizeof codes, "0x%04X 0x%08X", answer.primary,
                          static_cast<unsigned>(answer.secondary));
            SCOPED_TRACE(std::string(verb) + " " + codes);
            *state = before;
            service.control(std::string("fail ") + verb + " 1 " + codes);
            send();
            ASSERT_TRUE(console.wait_idle());
            EXPECT_EQ(*state, answer.state);
            EXPECT_EQ(kit::CONSOLE::message(), expected(answer, name, owner, adapter));
            if (answer.message != 0) {
                ASSERT_TRUE(console.answer("OK"));
            }
            ASSERT_TRUE(console.wait_idle());
        }
    }

private:
    static std::string expected(const Answer& answer, const std::string& name,
                                const std::string& owner, NB_ULONG adapter) {
        if (answer.message == 0) {
            return "";
        }
        char text[VGA_MESSAGE_BUFFER_SIZE];
        const bool codes = answer.arguments == Answer::CODES;
        const std::string second = codes ? "" : owner;
        codes ? vga_print_msg(text, gvga_messages[answer.message], "s x lx", name.c_str(),
                              NB_ULONG{answer.primary}, answer.secondary)
              : vga_print_msg(text, gvga_messages[answer.message], "s s i", name.c_str(),
                              second.c_str(), adapter);
        std::string line = text; // the box tells them as lines of their own
        std::erase(line, '\n');
        return line;
    }
};

TEST_F(Answers, OfTheNode) {
    const auto start = [&] {
        node->node_state = VGA_NODE_STATE_STOPPED;
        vga_nodew_start_node(node);
        EXPECT_EQ(node->node_state, VGA_NODE_STATE_STARTING);
    };
    const std::string name(node->node_name, strnlen(node->node_name, sizeof node->node_name));
    expect("NAP_INIT_NODE", name, &node->node_state, VGA_NODE_STATE_STOPPED, start,
           {{0x0200, 0x39100000, VGA_NODE_STATE_ACTIVE, 0},
            {0x0200, 0x554D, VGA_NODE_STATE_STOPPED, 910},
            {0x0200, 0x39100001, VGA_NODE_STATE_STOPPED, 909},
            GONE_SOFTWARE});
    const auto stop = [&] {
        EXPECT_TRUE(vga_issue_stop_node(node, vga_process_stop_node));
        EXPECT_EQ(node->node_state, VGA_NODE_STATE_STOPPING);
    };
    expect("NAP_STOP_NODE", name, &node->node_state, VGA_NODE_STATE_ACTIVE, stop,
           {{0x0200, 0x39100000, VGA_NODE_STATE_ACTIVE, 932},
            {0x03F0, 0x5542, VGA_NODE_STATE_ACTIVE, 0}});
}

TEST_F(Answers, OfADlc) {
    vga_dlc* dlc = find<vga_dlc>(node->dlc_tree, "X25");
    NB_BYTE* state = &dlc->vcb->state;
    expect("NAP_START_DLC", "X25", state, INACTIVE,
           [&] { vga_issue_start_dlc(dlc, vga_nodew_start_dlc_cb, dlc->handle); },
           {{0x0100, 0x10050000, ACTIVE, 0},
            {0x0200, 0x86020000, INACTIVE, 912},
            {0x0300, 0x12345678, INACTIVE, 911, Answer::CODES},
            GONE_SOFTWARE});
    expect("NAP_STOP_DLC", "X25", state, ACTIVE,
           [&] { vga_issue_stop_dlc(dlc, vga_nodew_stop_dlc_cb, dlc->handle); },
           {{0x2100, 0, INACTIVE, 0},
            {0x0200, 0x42100000, INACTIVE, 0},
            {0x0100, 0x10050000, INACTIVE, 0},
            {0x0300, 0x12345678, ACTIVE, 930, Answer::CODES},
            {0x03F0, 0x5542, ACTIVE, 0}});
}

TEST_F(Answers, OfAPort) {
    vga_port* p = port("ETHPORT");
    NB_BYTE* state = &p->vcb->state;
    const auto adapter =
        reinterpret_cast<const DLC_SPECIFIC*>(nof_tail(p->parent->vcb))->adapter_number;
    expect(
        "NAP_START_PORT", "ETHPORT", state, INACTIVE, [&] { vga_nodew_init_start_port(p); },
        {{0x0200, 0x10100000, ACTIVE, 0},
         {0x0100, 0x0C100000, INACTIVE, 0},
         {0x0200, 0x11100000, STOPPING, 924},
         {0x0200, 0x40100000, INACTIVE, 923, Answer::ADAPTER},
         {0x2100, 7, INACTIVE, 922},
         {0x0200, 0x10100001, INACTIVE, 921, Answer::CODES},
         GONE_SOFTWARE},
        "ETH0", adapter);
    expect("NAP_STOP_PORT", "ETHPORT", state, ACTIVE,
           [&] { vga_issue_stop_port(p, vga_nodew_stop_port_cb, p->handle); },
           {{0x2100, 7, INACTIVE, 0},
            {0x0200, 0x11100000, STOPPING, 0},
            {0x0100, 0x0C100000, INACTIVE, 0},
            {0x0200, 0x0C100000, ACTIVE, 933, Answer::CODES},
            {0x03F0, 0x5542, ACTIVE, 0}});
}

TEST_F(Answers, OfALinkStation) {
    vga_ls* l = ls("HOSTB");
    NB_BYTE* state = &l->vcb->det.state;
    const std::string owner(l->parent->vcb->port_name,
                            std::string_view(l->parent->vcb->port_name, 8).find_last_not_of(' ') +
                                1);
    const auto start = [&] { vga_nodew_init_start_ls(l, false); };
    expect("NAP_START_LS", "HOSTB", state, INACTIVE, start,
           {{0x0200, 0xC0010000, STARTING, 0},
            {0x0100, 0xB0020000, STARTING, 0},
            {0x0200, 0x3E100000, INACTIVE, 914, Answer::OWNER},
            {0x0200, 0x3F100000, INACTIVE, 920},
            {0x0200, 0x12100000, INACTIVE, 916},
            {0x0200, 0x3D100000, INACTIVE, 919, Answer::OWNER},
            {0x2100, 0x13100000, INACTIVE, 915},
            {0x2100, 0x13100001, INACTIVE, 913},
            {0x2300, 0x13200000, INACTIVE, 918},
            {0x2300, 0x13400000, INACTIVE, 917},
            {0x0300, 1, INACTIVE, 913},
            GONE_SOFTWARE},
           owner);
    EXPECT_EQ(l->start_pending, 0);
    EXPECT_EQ(l->pu_entry->start_pending, 0);
    expect("NAP_START_LS", "HOSTB", state, INACTIVE,
           [&] {
               start();
               l->start_pending = 0; // it has been stopped meanwhile
           },
           {{0x2100, 0x13100000, INACTIVE, 0}});
    expect("NAP_STOP_LS", "HOSTB", state, ACTIVE,
           [&] { vga_issue_stop_ls(l, vga_nodew_stop_ls_cb, l->handle, false); },
           {{0x2100, 7, INACTIVE, 0},
            {0x0200, 0x12100000, STOPPING, 0},
            {0x0100, 0x17100000, INACTIVE, 0},
            {0x0200, 0x17100000, ACTIVE, 931, Answer::CODES},
            {0x03F0, 0x5542, ACTIVE, 0}});
}

TEST_F(Answers, OfADlurPu) {
    vga_pu* pu = find_ebcdic<vga_pu>(node->local_pu_tree, "PUDLUR2");
    NB_BYTE* state = &pu->vcb.state;
    const auto start = [&] {
        vga_nodew_start_pu(pu);
        EXPECT_EQ(pu->start_pending, 1);
    };
    expect("NAP_START_INTERNAL_PU", "PUDLUR2", state, 0, start,
           {{0x0200, 0x05900000, 1, 0},
            {0x1400, 0x07900000, 0, 928},
            {0x1400, 0x09900000, 0, 926},
            {0x1400, 0x08900000, 0, 927},
            {0x0200, 0x01900000, 0, 929},
            {0x1400, 0x01900000, 0, 925, Answer::CODES},
            GONE_SOFTWARE});
    EXPECT_EQ(pu->start_pending, 0);
    expect("NAP_START_INTERNAL_PU", "PUDLUR2", state, 0, start,
           {{0x0200, 0x03900000, 0, 0}, {0x0200, 0x55100000, 0, 0}});
    EXPECT_EQ(pu->start_pending, 1) << "the answer says nothing about the start";
    expect("NAP_STOP_INTERNAL_PU", "PUDLUR2", state, 1,
           [&] { vga_issue_stop_internal_pu(pu, vga_nodew_stop_pu_cb, pu->handle); },
           {{0x0200, 0x06900000, 1, 0},
            {0x0200, 0x04900000, 1, 0},
            {0x0200, 0x55100000, 1, 0},
            {0x0200, 1, 1, 934, Answer::CODES},
            {0x03F0, 0x5542, 1, 0}});
}

TEST_F(Answers, OfSessionsAndDownstreamLus) {
    NB_BYTE none = 0;
    auto* lu = find<vga_lu62>(node->lu62_alias_tree, "CLAIMS");
    vga_mode* mode = ntl_avl_first<vga_mode>(ntl_avl_first<vga_plu>(lu->plu_tree)->mode_tree);
    ASSERT_GT(mode->act_sess_count, 0);
    char name[9];
    van_ebcdic_to_ascii(name, lu->vcb.lu_name, 8);
    const std::string lu_name(name, std::string_view(name).find_last_not_of(' ') + 1);
    expect(
        "NAP_DEACTIVATE_SESSION", lu_name, &none, 0,
        [&] { vga_issue_deactivate_session(mode, vga_nodew_deact_session_cb); },
        {{0x1B00, 1, 0, 0}, {0x1A00, 1, 0, 0}, {0x0300, 1, 0, 908, Answer::CODES}, GONE_SOFTWARE});
    expect("NAP_ACTIVATE_SESSION", lu_name, &none, 0,
           [&] {
               auto* vcb = vga_new_vcb<ACTIVATE_SESSION>(NAP_ACTIVATE_SESSION);
               vga_queue_verb(node->node_handle, vcb, lu->handle, vga_nodew_activate_session_cb);
           },
           {{0x0100, 0x5C010000, 0, 892},
            {0x0100, 0x1C100000, 0, 893},
            {0x0100, 0x26020000, 0, 894},
            {0x1B00, 1, 0, 895},
            {0x1A00, 1, 0, 896},
            {0x0310, 1, 0, 898},
            {0x0410, 1, 0, 899},
            {0x0300, 1, 0, 897, Answer::CODES},
            GONE_SOFTWARE});
    auto* pu = find_ebcdic<vga_pu>(node->down_pu_tree, "DSLINDEN");
    auto* down = find_ebcdic<vga_down_lu>(pu->lu_tree, "LIN03");
    expect("NAP_DEFINE_DOWNSTREAM_LU", "LIN03", &none, 0,
           [&] { vga_issue_define_downstream_lu(down, vga_define_downstream_lu_cb); },
           {{0x0200, 0x27900000, 0, 0},
            {0x0200, 0x25900000, 0, 890},
            {0x0300, 1, 0, 891, Answer::CODES},
            GONE_SOFTWARE});
}

} // namespace
