// Texts and icons of the node window's rows.
#include "windows/fixture.h"

#include "ui/windows/node_window_rows.h"

#include <vector>

namespace {

using TEXT = int (*)(void* record, char* text);

std::string row(TEXT create_text, void* record) {
    char text[VGA_VIEWER_MAX_TEXT_LENGTH + 1];
    std::memset(text, '?', sizeof text);
    const int length = create_text(record, text);
    EXPECT_EQ(std::strlen(text), static_cast<std::size_t>(length));
    return text;
}

// A message with its arguments; kinds as for vga_print_msg.
template <typename... Arguments>
std::string message(int number, const char* kinds, Arguments... arguments) {
    char text[2 * VGA_MESSAGE_BUFFER_SIZE];
    vga_print_msg(text, gvga_messages[number], kinds, arguments...);
    return text;
}

// The text with blanks at the end of each column taken away.
std::string trimmed(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text.find_first_not_of(' ', i);
        if (text[i] == ' ' && (end == std::string::npos || text.compare(end, 2, "%t") == 0)) {
            i = end == std::string::npos ? text.size() : end - 1;
            continue;
        }
        result += text[i];
    }
    return result;
}

// Column numbers of a row's markers, moved by the indentation of its level.
std::vector<int> columns(const std::string& text, int level) {
    std::vector<int> result;
    for (std::size_t at = text.find("%t"); at != std::string::npos; at = text.find("%t", at + 2)) {
        result.push_back(std::stoi(text.substr(at + 2)) + 8 * level);
    }
    return result;
}

class NodeRows : public WindowStore {};

TEST_F(NodeRows, PortsTellTheirState) {
    vga_port* port = add_port("ETH0");
    const auto text = [&](NB_BYTE state) {
        port->vcb->state = state;
        return row(vga_create_port_viewer_text, port);
    };
    EXPECT_EQ(text(NOF_STATE_START_PENDING), message(812, "s s", "ETH0    ", "a port"));
    for (const NB_BYTE other : {NB_BYTE{NOF_STATE_FAILED}, NB_BYTE{77}}) {
        EXPECT_EQ(text(other), message(858, "s s", "ETH0    ", "a port"));
    }
    EXPECT_EQ(broken(), 0u);
    // A description without an end is cut.
    std::memset(port->vcb->def.description, 'x', sizeof port->vcb->def.description);
    EXPECT_EQ(text(NOF_STATE_ACTIVE),
              message(810, "s s", "ETH0    ", std::string(31, 'x').c_str()));
    EXPECT_EQ(row(vga_create_port_viewer_text, vga_get_dlur_fake_port(node)), gvga_messages[232]);
    EXPECT_EQ(row(vga_create_port_viewer_text, vga_get_primary_line_fake_port(node)),
              gvga_messages[233]);
}

TEST_F(NodeRows, LinkStationsTellWhatTheyWaitFor) {
    constexpr NB_BYTE on_demand = NOF_LS_ON_DEMAND;
    constexpr NB_BYTE incoming = NOF_LS_INCOMING;
    constexpr NB_BYTE stopped = VGA_NODE_STATE_STOPPED;
    constexpr NB_BYTE active = VGA_NODE_STATE_ACTIVE;
    const struct {
        NB_BYTE node, port, ls, flags, dlc, circuit;
        int text;
    } cases[] = {
        {stopped, 1, 1, 3, NAP_DLC_SDLC, 0, 816},
        {active, 1, 1, 0, NAP_DLC_SDLC, 0, 814},
        {active, 2, 2, 0, NAP_DLC_SDLC, 0, 820},
        {active, 1, 8, 0, NAP_DLC_SDLC, 0, 821},
        {active, 8, 1, 0, NAP_DLC_SDLC, 0, 821},
        {active, 1, 16, 3, NAP_DLC_SDLC, 0, 819},
        {active, 0, 1, 0, NAP_DLC_SDLC, 0, 815}, // of no use without its port
        {active, 1, 0, 0, NAP_DLC_SDLC, 0, 815},
        {active, 1, 0, 0, NAP_DLC_SDLC, 2, 815}, // the circuit counts for QLLC only
        {active, 1, 0, 0, NAP_DLC_QLLC, 1, 815},
        {active, 1, 0, 0, NAP_DLC_QLLC, 2, 816},
        {active, 1, 0, on_demand, NAP_DLC_SDLC, 0, 817},
        {active, 0, 0, on_demand, NAP_DLC_SDLC, 0, 816},
        {active, 1, 0, on_demand | incoming, NAP_DLC_SDLC, 0, 817},
        {active, 1, 0, on_demand, NAP_DLC_QLLC, 2, 817},
        {active, 1, 0, incoming, NAP_DLC_SDLC, 0, 818},
        {active, 0, 0, incoming, NAP_DLC_SDLC, 0, 816},
        {active, 1, 0, incoming, NAP_DLC_QLLC, 2, 816},
        {active, 1, 0, 0x80, NAP_DLC_SDLC, 0, 815}, // other bits are not asked for
    };
    vga_ls* ls = (add_port("LINE"), add_ls("HOST", "LINE"));
    for (const auto& each : cases) {
        node->node_state = each.node;
        ls->parent->vcb->state = each.port;
        ls->parent->parent->vcb->def.dlc_type = each.dlc;
        ls->vcb->det.state = each.ls;
        ls->vcb->det.activation_flags = each.flags;
        nof_tail(ls->vcb)[NOF_LS_CIRCUIT_OFFSET] = each.circuit;
        EXPECT_EQ(row(vga_create_ls_viewer_text, ls),
                  message(each.text, "s s", "HOST    ", "a link station"))
            << "case " << &each - cases;
    }
    EXPECT_EQ(broken(), 0u);
    ls->vcb->det.state = 4;
    EXPECT_EQ(row(vga_create_ls_viewer_text, ls),
              message(819, "s s", "HOST    ", "a link station"));
    EXPECT_EQ(broken(), 0u);
    ls->vcb->det.implicit = 1;
    put(ls->vcb->det.adj_cp_name, "NET.PEER");
    EXPECT_EQ(trimmed(row(vga_create_ls_viewer_text, ls)), message(388, "s", "NET.PEER"));
    // A circuit byte beyond the specific data is not looked at.
    vga_ls* bare = add_ls(store_test::ls("SHORT", "LINE"));
    ls->parent->vcb->state = NOF_STATE_ACTIVE;
    EXPECT_EQ(row(vga_create_ls_viewer_text, bare), message(815, "s s", "SHORT   ", ""));
}

TEST_F(NodeRows, ADlurPuThatStarts) {
    vga_pu* pu = add_dlur_pu("PUDLUR");
    pu->vcb.dlur_status = NOF_DLUR_ACTIVE;
    EXPECT_EQ(row(vga_create_local_pu_viewer_text, pu), message(835, "s s", "PUDLUR  ", "a PU"));
    pu->start_pending = 1;
    EXPECT_EQ(row(vga_create_local_pu_viewer_text, pu), message(838, "s s", "PUDLUR  ", "a PU"));
}

class DependentLu : public NodeRows {
protected:
    void SetUp() override {
        NodeRows::SetUp();
        lu = (add_dlur_pu("PU1"), add_lu03("LU1", "PU1"));
        lu->vcb.det_data.lu_active = 1;
    }
    // The text behind the state.
    std::string use() {
        const std::string text = row(vga_create_deplu_viewer_text, lu);
        const std::string state = message(826, "s", "LU1     ");
        EXPECT_EQ(text.substr(0, state.size()), state);
        return text.substr(std::min(state.size(), text.size()));
    }
    vga_lu03* lu;
};

TEST_F(DependentLu, StateAndApplication) {
    LU03_DETAIL& detail = lu->vcb.det_data;
    detail.app_type = NAP_FMI_APPLICATION; // left over: the LU is not used
    EXPECT_EQ(use(), message(854, "s", "an LU"));
    detail.lu_active = 0;
    detail.plu_session_active = 1;
    EXPECT_EQ(row(vga_create_deplu_viewer_text, lu),
              message(824, "s", "LU1     ") + message(854, "s", "an LU"));
    detail.lu_active = 1;
    EXPECT_EQ(row(vga_create_deplu_viewer_text, lu),
              message(823, "s", "LU1     ") + message(854, "s", "an LU"));
    detail.plu_session_active = 0;

    detail.appl_conn_active = 1;
    detail.app_type = NAP_PU_CONC_APPLICATION;
    EXPECT_EQ(use(), message(853, "s", "an LU"));
    detail.app_type = NAP_LUA_APPLICATION;
    put(detail.application.named.name, "PAYROLL");
    EXPECT_EQ(use(), message(855, "s s", "PAYROLL", "an LU"));
    put(detail.application.named.name, "$1");
    EXPECT_EQ(use(), message(854, "s", "an LU"));
    detail.app_type = NAP_FMI_APPLICATION;
    put(detail.application.user.user_name, "clerk");
    detail.application.user.session_kind = NOF_DISPLAY_SESSION;
    EXPECT_EQ(use(), message(856, "s s", "clerk", "an LU"));
    detail.application.user.session_kind = 3;
    EXPECT_EQ(use(), message(869, "s s", "clerk", "an LU"));
    detail.app_type = 9;
    EXPECT_EQ(use(), message(854, "s", "an LU"));
    EXPECT_EQ(broken(), 0u);
}

TEST_F(DependentLu, Tn3270Client) {
    LU03_DETAIL& detail = lu->vcb.det_data;
    detail.appl_conn_active = 1;
    detail.app_type = NAP_TN_APPLICATION;
    LU03_TN_CLIENT& client = detail.application.client;
    std::memset(client.name, 'h', sizeof client.name); // a host name that fills its field
    client.port = 2323;
    client.client_kind = 1;
    const std::string host(sizeof client.name, 'h');
    const std::string address(40, 'h');
    const struct {
        NB_BYTE suite;
        int text;
    } suites[] = {{0, 862},    {1, 863},    {2, 863},    {3, 864},    {6, 864},
                  {9, 865},    {4, 866},    {5, 866},    {0x2F, 866}, {0x3C, 866},
                  {0x9C, 866}, {0x0A, 867}, {0x35, 868}, {0x3D, 868}, {0x9D, 868}};
    for (const auto& each : suites) {
        client.cipher_suite = each.suite;
        EXPECT_EQ(use(),
                  message(860, "s i s s", host.c_str(), 2323, gvga_messages[each.text], "an LU"));
    }
    client.address_form = 1;
    client.client_kind = 0;
    EXPECT_EQ(use(), message(861, "s i s s", address.c_str(), 2323, gvga_messages[868], "an LU"));
    client.association_kind = 2;
    put(client.associated_name, "PRINTER1");
    EXPECT_EQ(use(), message(857, "s s i s", "PRINTER1", address.c_str(), 2323, "an LU"));
    EXPECT_EQ(broken(), 0u);
    client.association_kind = 0;
    client.cipher_suite = 200;
    EXPECT_EQ(use(), message(861, "s i s s", address.c_str(), 2323, "", "an LU"));
    EXPECT_EQ(broken(), 1u);
}

TEST_F(DependentLu, Lu62NamesItsPartner) {
    vga_lu62* lu62 = add_lu62("LUDEP", "LUDEP", 7, "PU1");
    EXPECT_EQ(row(vga_create_deplu_viewer_text, lu62),
              message(824, "s s", "LUDEP   ", "an LU 6.2"));
    lu62->vcb.session_status = 1;
    EXPECT_EQ(row(vga_create_deplu_viewer_text, lu62),
              message(826, "s s", "LUDEP   ", "an LU 6.2"));
    add_mode(lu62, "NET.B", "#INTER");
    add_mode(lu62, "NET.A", "#BATCH");
    lu62->act_sess_count = 1;
    EXPECT_EQ(row(vga_create_deplu_viewer_text, lu62),
              message(825, "s s s s", "LUDEP   ", "NET.A", "#BATCH", "an LU 6.2"));
}

TEST_F(NodeRows, LocalLuHeadsItsModes) {
    vga_lu62* lu = add_lu62("LUA", "ALIAS678");
    vga_mode* mode = add_mode(lu, "NET.PARTNER", "#INTER");
    mode->act_sess_count = 2;
    lu->act_sess_count = 1;
    EXPECT_EQ(trimmed(row(vga_create_lu62_viewer_text, lu)),
              message(828, "s s s", "LUA", "ALIAS678", gvga_messages[872]));
    vga_expand_viewer(&node->lus_root, &lu->viewer);
    EXPECT_EQ(trimmed(row(vga_create_lu62_viewer_text, lu)),
              trimmed(message(829, "s s", "LUA", "ALIAS678")));
    EXPECT_EQ(trimmed(row(vga_create_mode_viewer_text, mode)),
              message(834, "s s s", "#INTER", "NET.PARTNER", message(870, "l", 2).c_str()));
    // Below routes the row names no columns.
    vga_create_viewer(&node->lus_root, &lu->ls_r_title, VGA_VIEWER_LS_R_TITLE, lu, &lu->viewer,
                      &mode->viewer);
    EXPECT_EQ(trimmed(row(vga_create_lu62_viewer_text, lu)),
              message(828, "s s s", "LUA", "ALIAS678", gvga_messages[872]));
    EXPECT_EQ(row(vga_create_ls_r_title_viewer_text, lu), gvga_messages[831]);
    vga_ls_routing route{};
    route.parent = lu;
    put(route.vcb.key.lu_name, "LUA");
    put(route.vcb.key.plu_name, "NET.FAR");
    put(route.vcb.def.ls_name, "WEST");
    EXPECT_EQ(trimmed(row(vga_create_ls_r_viewer_text, &route)),
              message(840, "s s s", "LUA", "NET.FAR", "WEST"));
    put(route.vcb.key.plu_name, "");
    EXPECT_EQ(trimmed(row(vga_create_ls_r_viewer_text, &route)),
              message(840, "s s s", "LUA", gvga_messages[873], "WEST"));
    vga_create_viewer(&node->lus_root, &route.viewer, VGA_VIEWER_LS_R, &route, &lu->ls_r_title,
                      nullptr);
    vga_expand_viewer(&node->lus_root, &lu->ls_r_title);
    EXPECT_EQ(row(vga_create_ls_r_title_viewer_text, lu), gvga_messages[832]);
    vga_delete_viewer(&node->lus_root, &lu->ls_r_title, false);
}

TEST_F(NodeRows, RemoteSystemsAndPartners) {
    vga_rem_sys* defined = add_rem_sys("NET.EAST", true);
    vga_rem_sys* learned = add_rem_sys("NET.WEST", false);
    defined->session_count = 3;
    const std::string three = message(870, "l", 3);
    const auto rem_sys_text = [](vga_rem_sys* rem_sys) {
        return trimmed(row(vga_create_rem_sys_viewer_text, rem_sys));
    };
    EXPECT_EQ(rem_sys_text(defined),
              message(843, "s s s", "NET.EAST", three.c_str(), "a remote node"));
    EXPECT_EQ(rem_sys_text(learned), trimmed(message(844, "s s", "NET.WEST", gvga_messages[871])));

    vga_rem_plu* located = add_rem_plu(defined, "NET.LUEAST", NAP_LU_RESOURCE, true);
    vga_rem_plu* dynamic = add_rem_plu(learned, "NET.LUWEST", NAP_LU_RESOURCE, false);
    vga_rem_plu* wildcard = add_rem_plu(defined, "NET.LUE", NAP_WILDCARD_LU_RESOURCE, true);
    vga_rem_plu* any = add_rem_plu(defined, "", NAP_WILDCARD_LU_RESOURCE, true);
    vga_rem_sys* fake = vga_fake_vga_rem_sys(node);
    vga_rem_plu* homeless = add_rem_plu(fake, "NET.NOWHERE", NAP_LU_RESOURCE, true);
    EXPECT_EQ(rem_sys_text(fake), gvga_messages[845]);
    located->session_count = 1;
    const auto plu_text = [](vga_rem_plu* plu) {
        return trimmed(row(vga_create_rem_plu_viewer_text, plu));
    };
    EXPECT_EQ(plu_text(located), message(848, "s s s", "LUEAST", gvga_messages[872], "a partner"));
    EXPECT_EQ(plu_text(dynamic), trimmed(message(849, "s s", "LUWEST", gvga_messages[871])));
    EXPECT_EQ(plu_text(wildcard), message(850, "s s s", "NET.LUE", "", "a partner"));
    EXPECT_EQ(plu_text(any), message(850, "s s s", gvga_messages[873], "", "a partner"));
    EXPECT_EQ(plu_text(homeless), message(851, "s s s", "NET.NOWHERE", "", "a partner"));

    NB_NAME8E lu_name;
    NB_NAME8E mode_name;
    put(lu_name, "LUA");
    put(mode_name, "#INTER");
    vga_rem_sess* sess = vga_add_vga_rem_sess(located, lu_name, mode_name);
    EXPECT_EQ(trimmed(row(vga_create_rem_sess_viewer_text, sess)),
              message(852, "s s s", "#INTER", "LUA", gvga_messages[871]));
    vga_expand_viewer(&node->rem_sys_root, &defined->viewer);
    EXPECT_EQ(rem_sys_text(defined),
              trimmed(message(842, "s s s", "NET.EAST", "", "a remote node")));
    vga_expand_viewer(&node->rem_sys_root, &located->viewer);
    EXPECT_EQ(plu_text(located), message(846, "s s s", "LUEAST", "", "a partner"));
    vga_expand_viewer(&node->rem_sys_root, &learned->viewer);
    EXPECT_EQ(rem_sys_text(learned), trimmed(message(841, "s", "NET.WEST")));
    vga_expand_viewer(&node->rem_sys_root, &fake->viewer);
    EXPECT_EQ(rem_sys_text(fake), gvga_messages[845]);
}

// State, partner and description stand below each other whatever the row's level is.
TEST_F(NodeRows, ColumnsAlignAcrossLevels) {
    vga_port* port = add_port("ETH0");
    vga_ls* ls = add_ls(store_test::ls("HOST", "ETH0", "HOST"));
    vga_lu03* lu = add_lu03("LU1", "HOST");
    const std::vector<int> state_and_use = {26, 40};
    EXPECT_EQ(columns(row(vga_create_port_viewer_text, port), 0), state_and_use);
    EXPECT_EQ(columns(row(vga_create_ls_viewer_text, ls), 1), state_and_use);
    EXPECT_EQ(columns(row(vga_create_local_pu_viewer_text, add_dlur_pu("PUDLUR")), 1),
              state_and_use);
    // The first half of an LU's row ends where the second half begins.
    const std::vector<int> lu_columns = columns(row(vga_create_deplu_viewer_text, lu), 2);
    ASSERT_GE(lu_columns.size(), 2u);
    EXPECT_EQ(lu_columns[0], 26);
    for (std::size_t i = 1; i < lu_columns.size(); ++i) {
        EXPECT_GE(lu_columns[i], 40);
    }
    EXPECT_EQ(gvga_viewer_desc[ls->viewer.type].level, 1);
    EXPECT_EQ(gvga_viewer_desc[lu->viewer.type].level, 2);
}

TEST_F(DependentLu, Icons) {
    LU03_DETAIL& detail = lu->vcb.det_data;
    detail.app_type = NAP_TN_APPLICATION;
    detail.application.client.cipher_suite = 3;
    for (const auto& [model, in_use, icon] : {std::tuple{2, 0, VGA_ICON_LUDISP},
                                              {2, 1, VGA_ICON_LUDISPSEC},
                                              {128, 1, VGA_ICON_LUPRINT},
                                              {6, 0, VGA_ICON_LU03}}) {
        lu->vcb.def_data.lu_model = static_cast<NB_BYTE>(model);
        detail.appl_conn_active = static_cast<NB_BYTE>(in_use);
        EXPECT_EQ(vga_choose_deplu_viewer_icon(lu), icon) << model << ' ' << in_use;
    }
}

TEST_F(NodeRows, LinkIcons) {
    const struct {
        NB_BYTE adj_cp_type, local_pu, services, implicit;
        int icon;
    } stations[] = {
        {NAP_END_NODE, 0, 0, 0, VGA_ICON_LSPEER},  {NAP_HOST_XID3, 0, 0, 0, VGA_ICON_LSHOST},
        {NAP_HOST_XID0, 0, 0, 0, VGA_ICON_LSHOST}, {NAP_END_NODE, 1, 0, 0, VGA_ICON_LSHOST},
        {NAP_DSPU_XID, 0, 1, 0, VGA_ICON_LSDOWN},  {NAP_HOST_XID3, 0, 0, 1, VGA_ICON_LSIMPL}};
    vga_ls* ls = (add_port("P"), add_ls("L", "P"));
    for (const auto& each : stations) {
        ls->vcb->def.adj_cp_type = each.adj_cp_type;
        ls->vcb->def.solicit_sscp_sessions = each.local_pu;
        ls->vcb->def.dspu_services = each.services;
        ls->vcb->det.implicit = each.implicit;
        EXPECT_EQ(vga_choose_ls_viewer_icon(ls), each.icon) << "case " << &each - stations;
    }
}

} // namespace
