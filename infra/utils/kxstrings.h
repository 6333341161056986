// Reading the words and arguments of a command, and formatting the values that handlers print.
//
// All texts are NUL-terminated. White space is the C library's class in the C locale: blank, tab,
// newline, vertical tab, form feed, carriage return.
#ifndef INFRA_UTILS_KXSTRINGS_H
#define INFRA_UTILS_KXSTRINGS_H

#include <cstddef>
#include <cstdint>
#include <ctime>

// --- Words ---

// The word after the one at `word`: skips this word and the white space after it. NULL when the
// text ends before, and for NULL or an empty text.
const char *kx_find_next_arg(const char *word);

// Compare the word at `word`, which ends at a NUL, ";" or white space, with a whole keyword,
// ignoring case. Returns 0 when equal, 1 otherwise; an abbreviation is not equal.
int stris(const char *word, const char *keyword);

// True when the text begins with `beginning`, compared with case. False for NULL.
bool kx_begins_with(const char *text, const char *beginning);

// True for a character of the white-space class.
bool kx_is_space(char c);

// Compare exactly `count` characters, ignoring case; a NUL is a character like any other.
// Returns 0 when equal, 1 otherwise. REQUIRES: both texts hold `count` characters, or they differ
// before either one ends.
int kx_strncasecmp(const char *a, const char *b, size_t count);

// Copy the source up to its first white space, or its end, into the destination of `size` bytes and
// terminate it; a longer word is cut to size - 1 characters. Returns 0.
int strncpy_until_space(char *destination, size_t size, const char *source);

// Copy the text into `work`, cut at size - 1 characters, and split the copy at blanks: a run of
// blanks is one separator, other white space belongs to a word. Stores pointers to the first
// `max_words` words and returns how many it stored. A NULL text has no words.
int kx_split_words(char *work, size_t size, const char *text, char *words[], int max_words);

// --- Arguments ---
// The parsers return 0, or -1 with their output untouched; a NULL text is a failure.

// The unsigned number at the text's start: decimal, 0x-hexadecimal or 0-octal, after optional
// white space and sign; characters after it are ignored. 0 for a text that is no number and for
// NULL. What does not fit into 32 bits saturates to 4294967295; a minus sign negates modulo 2^32,
// so "-1" gives 4294967295 too.
uint32_t kx_parse_number(const char *text);

// "10.1.2.3", possibly after white space and followed by white space and more words. The fields
// are decimal also with leading zeros. The address is in network byte order.
int kx_parse_ip_address(uint32_t *address, const char *text);

// The textual forms of RFC 4291, section 2.2, with the decisions of inet_pton: the text is the
// address and nothing else. The address is in network byte order.
int kx_parse_ipv6_address(uint8_t address[16], const char *text);

// Six groups of two hexadecimal digits separated by ":" or "-", or three groups of four separated
// by "." or "-". White space may come before them, and white space and more words after them. The
// first byte may have one digit when ":" follows it.
int kx_parse_mac_address(uint8_t mac[6], const char *text);

// The LTL number of an argument list like "ltl 12" or "12". -1 for NULL or no words, 1 for "ltl"
// alone, 0 when the last word that counts is not a number.
int32_t kx_get_ltl_from_args(const char *text);

// The same for a command for which a word must not count as an LTL: false unless the result is a
// number that stands in the text.
bool kx_get_typed_ltl(const char *text, uint32_t *ltl);

// The paging cookie of an argument list: of the words after a word that begins with "cookie", the
// number of the last one. -1 when there is none.
int32_t kx_get_ltl_cookie_frm_args(const char *text);

// --- Values ---

// Bytes of the text of a MAC address, its NUL included.
constexpr size_t KX_MAC_TEXT_SIZE = 18;

// "00:1a:2b:3c:4d:5e", with snprintf's bound and result.
int snprintf_mac_address(char *destination, size_t size, const uint8_t mac[6]);

// "10.1.2.3" from an address in network byte order, with snprintf's bound and result.
int snprintf_ip_address(char *destination, size_t size, uint32_t address);

// All eight groups with four digits each, with snprintf's bound and result.
int snprintf_ipv6_address(char *destination, size_t size, const uint8_t address[16]);

// "10.1.2.3" from an address in host byte order. Returns 0, or -1 with nothing written when the
// destination is NULL or has fewer than 16 bytes.
int ipv4_to_a(uint32_t address, char *destination, size_t size);

// Reserved; does nothing.
void kx_format_mac_address();

// The local time as "Mon Jan  2 15:04:05", 19 characters, in a buffer of at least 32 bytes. Returns
// the buffer; NULL for NULL.
char *kx_local_ctime(time_t seconds, char *buffer);

// Print a text block of `length` bytes line by line under a title. LF, CR and NUL end a line. The
// 81st character of a line also ends it and is dropped. What follows the last line end is not
// printed.
void od_dump(const char *title, const uint8_t *bytes, int length);

// Print the text after a record as one line under a title: from the first byte in 32..127 to a NUL,
// at most 84 bytes. Without such a byte only the title is printed.
void dump_extra_ascii(const char *title, const uint8_t *bytes, int length);

// --- Enumerations ---
// The text of a value in a driver record. The functions never return NULL.

const char *get_str_cache_type(uint32_t type);              // flow cache type
const char *get_upgrade_str(uint32_t state);                // upgrade state
const char *op_to_str(uint32_t op);                         // QoS match operator, low 8 bits
const char *filter_type_to_str(uint32_t type);              // QoS filter type, low 8 bits
const char *set_to_str(uint32_t action);                    // QoS set action
const char *kx_print_protocol(uint32_t protocol);           // QoS protocol class, low 16 bits
const char *kx_print_ip_protocol(uint32_t protocol);        // IP protocol number, low 16 bits
const char *kx_storm_status_int_to_string(uint32_t status); // storm control verdict
const char *get_str_fnf_status(uint32_t status);            // flow-export status code

// By private-VLAN type 0..5. REQUIRES: users check the index.
extern const char *const pvlan_type_string[6];

// By resource-pool status. Only 0 and 1 have a text; the other entries are NULL.
extern const char *const rpool_status_to_str[6];

#endif
