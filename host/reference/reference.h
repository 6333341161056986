// What the key tables say, as documents.
#ifndef HOST_REFERENCE_REFERENCE_H
#define HOST_REFERENCE_REFERENCE_H

#include "host/keys.h"

#include <span>
#include <string>
#include <vector>

std::string reference_markdown();
std::string reference_schema(); // JSON Schema 2020-12
std::string reference_mdoc();   // of a manual page: the forms of values, and the section KEYS

// How a type of value stands in a file, with literals in backquotes.
struct value_form {
    const char *type;
    const char *text;
};

extern const std::span<const value_form> VALUE_FORMS;
// What is true of all values and of a file as a whole: a paragraph each, likewise.
extern const std::span<const char *const> FORM_RULES;

// What the documents tell of a key.
struct key_entry {
    const key *row;
    std::string name;      // as it stands in a file; "0 to 40" for counters
    std::string type;      // in a few words
    std::string takes;     // the range or the words; words and numbers in backquotes
    std::string otherwise; // what holds without it, likewise
};

// A table that a document has a section of.
struct key_section {
    const key_table *table;
    std::vector<key_entry> entries;
    std::vector<const key_table *> included; // whose keys stand there, too
};

// All sections, each table once, in the order in which a reader meets them.
std::vector<key_section> all_sections();

#endif
