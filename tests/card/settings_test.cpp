// The commands that set the card, a port's mode and the features: words, bytes sent, complaints.
#include "tests/card/card_commands.h"

namespace {

struct setting_case {
    std::string command;
    std::string request; // "" when nothing is sent
    std::string text;    // with masked stamps
};

class Settings : public CardCommands {
protected:
    void check(const setting_case &expected) {
        SCOPED_TRACE(expected.command);
        EXPECT_EQ(run(expected.command), expected.text);
        std::string asked;
        for (const std::string &request : requests)
            asked += (asked.empty() ? "" : "; ") + request;
        EXPECT_EQ(asked, expected.request);
    }
};

TEST_F(Settings, PortMode) {
    const std::string usage =
        "STAMP: Usage: tarncmd set port-mode {trunk|access} [native-vlan <vlan>] ltl <ltl-num>\n";
    const std::string no_ltl = "STAMP: You need to specify an LTL.\n" + usage;
    const std::string range = "STAMP: LTL number must be between 18 and 1047 inclusive.\n" + usage;
    const std::string none = "STAMP: Failed to set port mode and/or native VLAN.\n";
    const auto vlan_range = [&](const char *vlan) {
        return "STAMP: VLAN " + std::string(vlan) + " is out of range 1-4095.\n" + usage;
    };
    const auto sent = [](const char *ltl, const char *bytes, const char *status) {
        return std::string("op 556 arg ") + ltl + " flags 2 len 8 in " + bytes + " -> " + status;
    };
    const setting_case cases[] = {
        {"", "", "STAMP: No valid parameters specified.\n" + usage},
        {"trunk ltl 20", sent("0x14", "0100000000100000", "0"), ""},
        {"trunks ltl 20", sent("0x14", "0100000000100000", "0"), ""},
        {"trunk native-vlan 5 ltl 20", sent("0x14", "0100000005000000", "0"), ""},
        {"access native-vlan 4095 ltl 20", sent("0x14", "00000000ff0f0000", "0"), ""},
        {"accessible native-vlanx 0x1f ltls 024", sent("0x14", "000000001f000000", "0"), ""},
        {"access   native-vlan  1  ltl  20", sent("0x14", "0000000001000000", "0"), ""},
        // The last one of two counts.
        {"access native-vlan 1 native-vlan 2", "", no_ltl},
        {"trunk ltl 19 ltl 20", sent("0x14", "0100000000100000", "0"), ""},
        // A value is cut to four characters.
        {"trunk ltl 18", sent("0x12", "0100000000100000", "61"), none},
        {"trunk ltl 10470", sent("0x417", "0100000000100000", "61"), none},
        {"trunk ltl 17", "", range},
        {"trunk ltl 1048", "", range},
        {"trunk ltl x", "", range},
        {"trunk native-vlan 4096 ltl 20", "", vlan_range("4096")},
        {"trunk native-vlan 40960 ltl 20", "", vlan_range("4096")},
        {"trunk native-vlan 0 ltl 20", "", vlan_range("0")},
        {"trunk native-vlan -1 ltl 20", "", vlan_range("-1")},
        {"trunk native-vlan ltl 20", "", vlan_range("0")},
        {"access ltl 20", "", "STAMP: Need to specify native (access) VLAN\n" + usage},
        {"access native-vlan 5", "", no_ltl},
        {"trunk", "", no_ltl},
        {"trunk ltl", "", no_ltl},
        {"access", "", no_ltl},
        {"trunk ltl 20 native-vlan 5", "",
         "STAMP: Specify the native-vlan before the LTL.\n" + usage},
        {"Trunk ltl 20", "", "STAMP: Invalid port mode Trunk\n" + usage},
        {"acces-and-more ltl 20", "", "STAMP: Invalid port mode acces-and\n" + usage},
        {"trunk LTL 20", "", "STAMP: Unknown argument LTL\n" + usage},
        {"trunk nativ-vlan-and-more 5", "", "STAMP: Unknown argument nativ-vlan-\n" + usage},
        {"trunk native-vlan 5 ltl 20 x", "",
         "STAMP: Too many parameters to the command.\n" + usage},
        // Words are read in their order: the first wrong one is told.
        {"trunk ltl 17 x y z", "", range},
    };
    for (setting_case expected : cases) {
        expected.command.insert(0, "set port-mode ");
        check(expected);
    }
    const port_view &view = driver.state.ports.by_ltl.at(20).views[KX_VIEW_HMX];
    EXPECT_EQ(view.record.vlan_mode, KX_VLAN_MODE);
    EXPECT_EQ(view.vlans, std::set<uint32_t>{1});
}

TEST_F(Settings, Card) {
    const std::string name(200, 'n');
    const std::string sixty(60, 'u');
    const setting_case cases[] = {
        {"card name", "", ""},
        {"card uuid vmware", "", ""},
        {"card ip", "", ""},
        {"card ipv6", "", ""},
        {"card update_level", "", "STAMP: Card ESX Update Level (NULL) parsing failed\n"},
        {"card name my  host", "op 53 arg 0x0 flags 6 max 256 in 6d792020686f7374 -> 0 max 256",
         ""},
        {"card name " + name, "op 53 arg 0x0 flags 6 max 256 in 6e*200 -> 0 max 256", ""},
        {"card uuid vmware 4445-4c", "op 51 arg 0x2 flags 6 max 48 in 343434352d3463 -> 0 max 48",
         ""},
        {"card uuid vmware " + sixty, "op 51 arg 0x2 flags 6 max 48 in 75*48 -> 0 max 48", ""},
        {"card ip 10.1.2.3 x", "op 57 arg 0x0 flags 2 len 4 in 0a010203 -> 0", ""},
        {"card ip 10.1.2.256", "", "STAMP: card ip (10.1.2.256) parsing failed\n"},
        {"card ipv6 fe80::1", "op 383 arg 0x0 flags 2 len 16 in fe80,00*13,01 -> 0", ""},
        {"card ipv6 1::2::3", "", "STAMP: card ipv6 (1::2::3) parsing failed\n"},
        {"card update_level 255", "op 949 arg 0x0 flags 2 len 1 in ff -> 0", ""},
        {"card update_level 256", "op 949 arg 0x0 flags 2 len 1 in 00 -> 0", ""},
        {"card update_level 0x1ff", "op 949 arg 0x0 flags 2 len 1 in ff -> 0", ""},
        {"card update_level x", "op 949 arg 0x0 flags 2 len 1 in 00 -> 0", ""},
    };
    for (const setting_case &expected : cases)
        check(expected);
    EXPECT_EQ(driver.state.card.name, name);
}

TEST_F(Settings, SuccessIsTracedByItsOwnBit) {
    const setting_case cases[] = {
        {"card ip 10.1.2.3", "", "STAMP: card ip 50462986\nSTAMP: Set card ip 0302010a\n"},
        {"card ipv6 ::1", "",
         "STAMP: card ip v6 0000:0000:0000:0000:0000:0000:0000:0001\n"
         "STAMP: card ip v6 0000:0000:0000:0000:0000:0000:0000:0001\n"},
        {"card update_level 3", "", "STAMP: Set ESX update level :3 \n"},
        {"card name a b", "", "STAMP: Set card name a b\n"},
        {"card uuid vmware u", "", "STAMP: Set card uuid u\n"},
    };
    const uint32_t before = kx_debug_print_hmx_cmds;
    for (const setting_case &expected : cases) {
        const bool text = expected.text.find("name") != std::string::npos ||
                          expected.text.find("uuid") != std::string::npos;
        for (const uint32_t bit : {8U, 16U}) {
            kx_debug_print_hmx_cmds = bit;
            std::string seen = run(expected.command);
            if (bit == 16) {
                // The command layer traces its own entry in two lines.
                seen.erase(0, seen.find('\n', seen.find('\n') + 1) + 1);
            }
            EXPECT_EQ(seen, text == (bit == 8) ? expected.text : "") << expected.command;
        }
    }
    kx_debug_print_hmx_cmds = before;
}

TEST_F(Settings, Features) {
    const auto usage = [](const std::string &hint) {
        return "STAMP: Usage: tarncmd " + hint + "\n";
    };
    const std::string nic = "set iscsi nic <vmnicN>";
    const std::string pinning = "set iscsi pinning <vmk-ltl> <vmnic-ltl>";
    const std::string timer = "set VNS mac-move-timer <seconds>";
    const std::string sgt = "set bvl sgt <sgt_val> ltl <ltl-num>";
    const std::string trust = "set bvl trust <0/1> ltl <ltl-num>";
    const std::string policy =
        "set bvl role-based sgt <sgt_val> dgt <dgt_val> access-list <access-list-name>";
    const std::string pinning_state = "op 386 arg 0x0 flags 1 len 4 -> 0; ";
    const setting_case cases[] = {
        {"set iscsi nic vmnic1", "op 490 arg 0x0 flags 6 max 64 in 766d6e696331 -> 0 max 64", ""},
        {"clear iscsi nic vmnic1", "op 567 arg 0x0 flags 6 max 64 in 766d6e696331 -> 0 max 64", ""},
        {"set mirra-enic vmnic1", "op 583 arg 0x0 flags 6 max 64 in 766d6e696331 -> 0 max 64", ""},
        {"clear mirra-enic vmnic1", "op 584 arg 0x0 flags 6 max 64 in 766d6e696331 -> 0 max 64",
         ""},
        {"set iscsi nic", "", usage(nic)},
        {"set iscsi nic vmnic1 vmnic2", "", usage(nic)},
        {"set iscsi nic vmnic" + std::string(58, '1'),
         "op 490 arg 0x0 flags 6 max 64 in 766d6e6963,31*58 -> 0 max 64", ""},
        {"set iscsi nic vmnic" + std::string(59, '1'), "", usage(nic)},
        {"set portmode", "", usage(nic)}, // the row gets what no other matches
        {"set iscsi nic vmnic", "", usage(nic)},
        {"set iscsi nic vmnic1a", "", usage(nic)},
        {"set iscsi nic Vmnic1", "", usage(nic)},
        {"set iscsi nic 1", "", usage(nic)},
        {"clear iscsi nic web", "", usage("clear iscsi nic <vmnicN>")},
        {"set mirra-enic vmnic-1", "", usage("set mirra-enic <vmnicN>")},
        {"clear mirra-enic vmnic1.", "", usage("clear mirra-enic <vmnicN>")},
        {"clear iscsi nic", "", usage("clear iscsi nic <vmnicN>")},
        {"set mirra-enic", "", usage("set mirra-enic <vmnicN>")},
        {"clear mirra-enic", "", usage("clear mirra-enic <vmnicN>")},
        {"set iscsi pinning 50 0x14",
         pinning_state + "op 491 arg 0x0 flags 2 len 7 in 32001400000000 -> 0", ""},
        {"set iscsi pinning 50", "", usage(pinning)},
        {"set iscsi pinning 50 65536", "", usage(pinning)},
        {"set iscsi pinning 50x 20", "", usage(pinning)},
        {"set VNS mac-move-timer 4294967295", "op 916 arg 0x0 flags 2 len 4 in ffffffff -> 0", ""},
        {"set vns mac-move-timer 4294967296", "", usage(timer)},
        {"set vns mac-move-timer -1", "", usage(timer)},
        {"set ids enable", "op 276 arg 0xc flags 3 len 8 in 0100000000000000 -> 0", ""},
        {"set ids DISABLE", "op 276 arg 0xc flags 3 len 8 in 00*8 -> 0", ""},
        {"set ids enabled", "", usage("set ids <enable | disable>")},
        {"set qos statistics enable", "op 1122 arg 0x1 flags 2 len 4 in 01000000 -> 0", ""},
        {"set qos all-dispatch disable", "op 1122 arg 0x2 flags 2 len 4 in 00000000 -> 0", ""},
        {"set qos statistics", "", usage("set qos statistics <enable | disable>")},
        {"set qos all-dispatch on", "", usage("set qos all-dispatch <enable | disable>")},
        {"set bvl sgt 65535 ltl 20", "op 921 arg 0x14 flags 2 len 2 in ffff -> 0", ""},
        {"set bvl enable 1 ltl 20", "op 922 arg 0x14 flags 2 len 1 in 01 -> 0", ""},
        {"set bvl trust 0 ltl 20", "op 923 arg 0x14 flags 2 len 1 in 00 -> 0", ""},
        {"set bvl enforcement 1 ltl 20", "op 924 arg 0x14 flags 2 len 1 in 01 -> 0", ""},
        {"set bvl propagate 1 ltl 20", "op 925 arg 0x14 flags 2 len 1 in 01 -> 0", ""},
        {"set bvl sgt 65536 ltl 20", "", usage(sgt)},
        {"set bvl sgt 1 20", "", usage(sgt)},
        {"set bvl trust 2 ltl 20", "", usage(trust)},
        {"set bvl trust 1 port 20", "", usage(trust)},
        {"set bvl enable 1", "", usage("set bvl enable <0/1> ltl <ltl-num>")},
        {"set bvl enforcement 1 ltl", "", usage("set bvl enforcement <0/1> ltl <ltl-num>")},
        {"set bvl propagate 1 ltl 2 3", "", usage("set bvl propagate <0/1> ltl <ltl-num>")},
        {"set bvl role-based sgt 3 dgt 0x104 access-list web",
         "op 929 arg 0x0 flags 2 len 133 in 03000401776562,00*126 -> 0", ""},
        {"set bvl role-based sgt 3 dgt 4 access-list " + std::string(128, 'l'),
         "op 929 arg 0x0 flags 2 len 133 in 03000400,6c*128,00 -> 0", ""},
        {"set bvl role-based sgt 3 dgt 4 access-list " + std::string(129, 'l'), "", usage(policy)},
        {"set bvl role-based sgt 3 dgt 4", "", usage(policy)},
    };
    for (const setting_case &expected : cases)
        check(expected);
}

TEST_F(Settings, ARefusedFeatureTellsItsStatus) {
    for (const char *command :
         {"set iscsi nic vmnic1", "clear iscsi nic vmnic1", "set mirra-enic vmnic1",
          "clear mirra-enic vmnic1", "set iscsi pinning 1 2", "set VNS mac-move-timer 1",
          "set ids enable", "set qos statistics enable", "set qos all-dispatch enable",
          "set bvl sgt 1 ltl 20", "set bvl trust 1 ltl 20",
          "set bvl role-based sgt 1 dgt 2 access-list a"}) {
        driver.state.overrides.clear();
        run(command);
        override_rule rule;
        rule.opcode = static_cast<uint16_t>(std::stoul(requests.back().substr(3)));
        rule.status = 7;
        driver.state.overrides = {rule};
        const std::string text = run(command);
        EXPECT_TRUE(text.ends_with(" failed with status 7\n")) << text;
        EXPECT_EQ(std::string(command).rfind(text.substr(7, text.find(" failed") - 7), 0), 0U);
    }
}

} // namespace
