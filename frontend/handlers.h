// The handlers of the command table.
//
// A handler gets the words after the matched keywords, NULL when there are none. It returns 0 for
// success, -1 for failure, and -2 to stop the later commands of the same text, too.
#ifndef FRONTEND_HANDLERS_H
#define FRONTEND_HANDLERS_H

// The catch-all of display commands that match nothing deeper (handlers/stubs.cpp).
int kx_show_empty(const char *arg);

// Port, forwarding and counter views (handlers/port/).
int kx_port_table_dump(const char *arg);
int kx_port_vlan_table_dump(const char *arg);
int kx_port_seg_table_dump(const char *arg);
int kx_port_security_table_dump(const char *arg);
int kx_port_old_table_dump(const char *arg);
int kx_trunk_table_dump(const char *arg);
int kx_port_dvport_info_table_dump(const char *arg);
int kx_show_port_device_type(const char *arg);
int kx_port_table_mac_dump(const char *arg);
int kx_pc_table_dump(const char *arg);
int kx_show_ltl_range(const char *arg);
int kx_l2_table_dump_vlan(const char *arg);
int kx_l2_table_dump_all(const char *arg);
int kx_l2_table_dump_bdname(const char *arg);
int kx_l2_table_dump_segid(const char *arg);
int kx_l2_table_dump_slotwise(const char *arg);
int kx_l2_table_num_entries_dump(const char *arg);
int kx_get_mac_table_dump(const char *arg);
int kx_vlan_list_dump(const char *arg);
int kx_bd_table_dump(const char *arg);
int kx_bd_table_dump_bdname(const char *arg);
int kx_segment_table_dump(const char *arg);
int kx_bd_table_dump_dr(const char *arg);
int kx_porttable_print_stats(const char *arg);
int kx_porttable_clear_stats(const char *arg);
int kx_port_drops_in_table_dump(const char *arg);
int kx_port_drops_out_table_dump(const char *arg);
int kx_port_drops_in_table_ltl_dump(const char *arg);
int kx_port_drops_out_table_ltl_dump(const char *arg);
int kx_port_drops_table_ltl_dump(const char *arg);

// The card, its memory and its settings (handlers/card/).
int kx_card_version(const char *arg);
int kx_show_krt_uptime(const char *arg);
int kx_card_dump(const char *arg);
int kx_show_heaps(const char *arg);
int kx_show_mempools(const char *arg);
int kx_show_assert(const char *arg);
int kx_clear_printk_counts(const char *arg);
int kestrel_cmd_card_uuid_vmware(const char *arg);
int kestrel_cmd_card_name(const char *arg);
int kestrel_cmd_card_ip(const char *arg);
int kestrel_cmd_card_ipv6(const char *arg);
int kestrel_cmd_upd_level(const char *arg);
int kestrel_cmd_set_port_mode_and_native_vlan(const char *arg);
int kx_set_iscsi_nics(const char *arg);
int kx_clear_iscsi_nics(const char *arg);
int kx_set_iscsi_pinning(const char *arg);
int kx_vns_sdp_mac_refresh_timer(const char *arg);
int kestrel_cmd_set_mirra_enic(const char *arg);
int kestrel_cmd_clear_mirra_enic(const char *arg);
int kx_set_sched_ids_state(const char *arg);
int kx_set_qos_stat_state(const char *arg);
int kx_set_qos_stat_dispatch_state(const char *arg);
int kx_bvl_set_sgt(const char *arg);
int kx_bvl_set_trust(const char *arg);
int kx_bvl_set_enable(const char *arg);
int kx_bvl_set_pol(const char *arg);
int kx_bvl_set_enforcement(const char *arg);
int kx_bvl_set_propagate(const char *arg);

// Access control lists (handlers/acl/).
int kx_show_acl(const char *arg);
int kx_show_acl_policy(const char *arg);
int kx_acl_show_pacl_entry(const char *arg);
int kx_acl_clean_pacl_table(const char *arg); // no row of the table runs it
int kx_clear_acl_dbgstats(const char *arg);
int kx_flush_aclflows(const char *arg);
int kx_clear_aclflow_dbgstats(const char *arg);

// LACP (handlers/lacp/).
int kx_show_lacp(const char *arg);
int kx_show_lacp_hostdata(const char *arg);

// Commands run inside the agent (dpa/command/).
int kx_dpa_cmd(const char *arg);

// Handlers that are not built yet: they print nothing and return -1 (handlers/stubs.cpp). When you
// build one, move it from this list to a declaration above.
// clang-format off
#define KESTREL_STUB_HANDLERS(STUB) \
    STUB(kx_show_dp_heap_usage) STUB(kx_mcast_dump) STUB(kx_show_storm_stats) \
    STUB(kx_show_storm_rate) STUB(kx_show_storm_ltl_status) STUB(kx_show_qos_node) \
    STUB(kx_show_acl_dbgstats) STUB(kx_show_vlan_brief) STUB(kx_show_vlan_info) \
    STUB(kx_show_pp_brief) STUB(kx_port_profile_info) STUB(kx_show_qos_dbgstats) \
    STUB(kx_port_dis_loop_detect_dump) STUB(kx_port_uufb_override_dump) \
    STUB(kx_port_bpduguard_dump) STUB(kx_port_errdisable_up) STUB(kx_pc_table_debug_dump) \
    STUB(kx_port_auto_static_mac_learning_dump) STUB(kx_bd_trunk_table_dump) \
    STUB(kx_porttable_print_bpdu_stats) STUB(kx_show_vxlan_xfaces) STUB(kx_show_vxlan_encap_ltl) \
    STUB(kx_show_vxlan_encap_mac) STUB(kx_show_vxlan_vm_summary) STUB(kx_vxlan_stats_dump_all) \
    STUB(kx_vxlan_stats_dump_bd_all) STUB(kx_vxlan_stats_dump_ltl_all) \
    STUB(kx_vxlan_stats_dump_ltl) STUB(kx_vxlan_show_vteps) STUB(kx_vxlan_show_vteps_bd) \
    STUB(kx_show_vxlan_threads) STUB(kx_show_vxlan_port) STUB(kx_show_vxlan_offload_port) \
    STUB(kx_porttable_print_packet_stats) STUB(kx_show_system_profile) \
    STUB(kx_show_kestrel_port_table) STUB(kx_show_kestrel_port_vlan_table) STUB(kx_show_headroom) \
    STUB(kx_show_span_info) STUB(kx_show_erspan_capable_info) STUB(kx_show_acl_pinst) \
    STUB(kx_acl_show_pinst_tbl) STUB(kestrel_cmd_pvlan_list) STUB(kx_nf_show_monitor) \
    STUB(kx_nf_show_interface) STUB(kx_nf_show_stats) STUB(kx_show_portsec_stats) \
    STUB(kx_show_portsec_stats_vlan) STUB(kx_show_portsec_stats_bd_name) \
    STUB(kx_show_portsec_macs_vlan) STUB(kx_show_portsec_macs_bd_name) \
    STUB(kx_show_portsec_macs_all) STUB(kx_show_qos_policy) STUB(kx_show_qos_pinst) \
    STUB(kx_dump_qos_pinst_tbls_cmd) STUB(kx_show_qos_queue_stats) STUB(kx_show_qos_queue_rate) \
    STUB(show_show_queue_nodes) STUB(show_respool_class) STUB(show_respool_global) \
    STUB(kx_test_respool) STUB(kx_dhcps_show_dhcp_vlan) STUB(kx_dhcps_show_dhcp_intf) \
    STUB(kx_dhcps_show_binding) STUB(kx_dhcps_show_dai_vlan) STUB(kx_dhcps_show_dai_intf) \
    STUB(kx_dhcps_show_ipsg_intf) STUB(kx_show_pinning) STUB(kx_show_pinning_krt_cfg) \
    STUB(kx_dhcps_show_dhcp_opt82_intf) STUB(kx_dhcps_show_dhcp_stats) \
    STUB(kx_dhcps_show_dai_stats) STUB(kx_dhcps_show_log_level) STUB(kx_dhcps_show_filter_mode) \
    STUB(kx_vsim_show_vsds) STUB(kx_vsim_show_vsd_ports) STUB(kx_show_iscsi_pinning) \
    STUB(kx_show_iscsi_nics) STUB(kx_show_ltl_map) STUB(kx_show_pixm_table) STUB(kx_show_arp_bd) \
    STUB(kx_show_arp_all) STUB(kx_show_arp_bdname) STUB(kx_show_arp_filter) \
    STUB(kx_show_learnt_ip) STUB(kx_show_learnt_ip_port) STUB(kx_show_ip_lisp) \
    STUB(kx_show_ip_lisp_stats) STUB(kx_show_ip_lisp_mapcache) \
    STUB(kx_show_ip_lisp_mapcache_stats) STUB(kx_vns_sdp_cfg) STUB(kx_vns_sdp_dump_vsn_table) \
    STUB(kx_vns_sdp_dump_interface_table) STUB(kx_show_beacon_info) STUB(kx_show_beacon_cfg) \
    STUB(kx_show_channel_type) STUB(kx_show_sched_stats) STUB(kx_show_sched_errors) \
    STUB(kx_show_sched_debug) STUB(kx_show_dr_stats) STUB(kx_show_opflex) \
    STUB(kx_show_ovq_mac_pinning) STUB(kx_show_useg_unres) STUB(kx_show_useg_all) \
    STUB(kx_show_useg_cfg_tbl_brief) STUB(kx_show_useg_cfg_tbl_info) \
    STUB(kx_show_vleaf_epp_mcast) STUB(kx_show_vleaffs_fwd_counters) \
    STUB(kx_show_vleaffs_l2_entry) STUB(kx_show_vleaffs_l3_entry) STUB(kx_show_vleaffs_lpm_entry) \
    STUB(kx_show_vleaffs_lpm_counters) STUB(kx_show_vleaffs_port_epg) STUB(kx_show_vleaffs_bd) \
    STUB(kx_show_vleaffs_vrf) STUB(kx_show_parp) STUB(kx_show_sched_ids_state) \
    STUB(kx_show_pd_pktstats) STUB(kestrel_cmd_show_mirra_enic) STUB(kx_show_pc_internal) \
    STUB(kx_show_aclflow_stats) STUB(kx_show_aclflow_detail) STUB(kx_show_acllog_config) \
    STUB(kx_show_aclflow_dbgstats) STUB(kx_show_dfwflow_globals) \
    STUB(kx_show_dfwflow_connect_stats) STUB(kx_show_dfwflow_session_stats) \
    STUB(kx_show_dfwflow_port_drop_stats) STUB(kx_show_dfwflow_interfaces) \
    STUB(kx_show_dfwflow_port_globals) STUB(kx_show_dfwflow_entry) STUB(kx_show_dfwflow_port) \
    STUB(kx_show_dfwflow_internal_port) STUB(kx_show_dfwflow_ftp_port) STUB(kx_show_card_type) \
    STUB(kx_show_l3sec_tarncmd_info) STUB(kx_show_l3ctrl_ipaddr) STUB(kx_show_stun_rate) \
    STUB(kx_show_bvl_config) STUB(kx_show_bvl_port_config) STUB(kx_show_bvl_ipsgt) \
    STUB(kx_show_bvl_policy) STUB(kx_show_bvl_access_list) STUB(kx_show_vlan_vxlan_mapping) \
    STUB(kx_show_multi_mac_capable_interfaces) STUB(kx_show_l2_md_num) \
    STUB(kx_vdp_start_stop_command) STUB(kx_show_printk_counts) STUB(kx_sod_dump) \
    STUB(kx_lldp_dump) STUB(kx_zdp_dump) STUB(kx_clear_portsec_entry) STUB(kx_clear_pd_pktstats) \
    STUB(kx_dhcps_clear_dhcp_stats) STUB(kx_clear_qos_queue_stats) STUB(kx_clear_vxlan_threads) \
    STUB(kx_clear_vleaffs_fwd_counters) STUB(kx_porttable_clear_bpdu_stats) \
    STUB(kx_clear_sched_stats) STUB(kx_clear_ip_lisp_stats) STUB(kx_clear_ip_lisp_mapcache) \
    STUB(kx_dhcps_clear_dai_stats) STUB(kx_clear_qos_dbgstats) STUB(kx_clear_dfwflow_intf_stats) \
    STUB(kx_set_card_type) STUB(kx_lldp_clear) STUB(kx_zdp_clear)
// clang-format on

#define DECLARE_STUB_HANDLER(handler) int handler(const char *arg);
KESTREL_STUB_HANDLERS(DECLARE_STUB_HANDLER)
#undef DECLARE_STUB_HANDLER

// True for a handler of the list above.
bool kx_is_stub(int (*handler)(const char *arg));

#endif
