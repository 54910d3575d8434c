// All load data tables of one kind, by name, and the rules that both kinds share: which collections
// may carry an operator, which names are reserved, what must not be mixed in one output section.
#pragma once

#include <map>
#include <string>

#include "ELFLNK/object/collection.h"
#include "ELFLNK/table/load_data_table.h"

class LOAD_DATA_TABLE_DB {
  public:
    explicit LOAD_DATA_TABLE_DB(const char* prefix) : prefix_(prefix) {}
    virtual ~LOAD_DATA_TABLE_DB() = default;

    /// Makes a table of that name.
    virtual LOAD_DATA_TABLE* new_table(const char* name, const SOURCE_POSITION* pos);
    virtual bool legal_collection_kind_for_table(COLLECTION_KIND kind) const = 0;
    virtual bool collection_contains_illegal_load_data_table(const COLLECTION* c) const = 0;
    virtual bool table_name_reserved(const char* name) const;
    virtual bool is_table_supported() const = 0;
    virtual bool disable_table_support() const = 0;
    virtual short normalized_alg(short kind) const { return kind; }
    virtual void generate_map_file();
    virtual void generate_xml_info();
    virtual const char* table_type_string() const = 0;
    virtual const char* table_type_string_upper() const = 0;
    /// The element of all tables of this kind.
    virtual XML_TAG_ID table_xml_tag() const = 0;
    virtual bool has_table_section(const COLLECTION* collection) const = 0;
    virtual bool contains_table(const LINKER_OBJECT* object) const = 0;
    /// True if the operators of a collection may not be applied at all, as it is made by the
    /// linker.
    virtual bool enforce_cinit_restrictions(const COLLECTION*) const { return false; }
    virtual LOAD_DATA_TABLE_SPECS* table_specs(const COLLECTION* collection) const = 0;

    /// The table of that name, made if there is none.
    LOAD_DATA_TABLE* get_table(const char* name, const SOURCE_POSITION* pos);
    LOAD_DATA_TABLE* find_table(const char* name) const;
    /// The keyword for the table that start-up code copies first: "binit", all in lower or all in
    /// upper case.
    static bool is_binit(const char* name);
    static bool is_same_keyword(const char* name, const char* keyword);
    /// The name of the table's section.
    std::string linker_object_name(const char* name) const;

    /// After load: makes the tables and records that the command file asks for.
    void originate();
    /// `now` stands in the place of output section `old`: the records about that one are about it.
    void replace_outsect(const COLLECTION* old, COLLECTION* now);
    /// At the end of collection: drops records that cannot be, and defines the tables' symbols.
    void restrict_table_outsect();
    /// After the first phase of placement: records of split sections.
    void split();

    const std::map<std::string, LOAD_DATA_TABLE*>& tables() const { return tables_; }

  protected:
    virtual LOAD_DATA_TABLE* make_table(const char* name, const SOURCE_POSITION* pos) const = 0;
    void enter_table(LOAD_DATA_TABLE* table) { tables_[table->user_name()] = table; }

  private:
    /// An operator that reaches a collection, from itself or from one around it.
    struct REQUEST {
        const char* name;
        const SOURCE_POSITION* position;
    };
    using REQUESTS = std::vector<REQUEST>;

    void originate_records(COLLECTION* collection);
    void register_section();
    void check_for_illegal_table_specs(COLLECTION* collection, REQUESTS requests);
    bool check_for_empty_collections(COLLECTION* collection, const REQUESTS& requests);
    void check_for_illegal_table_specs_on_outsect(COLLECTION* outsect, const REQUESTS& requests);
    void no_or_all_table_sections(COLLECTION* collection);
    bool enforce_only_table_sections(COLLECTION* collection, COLLECTION* outermost);
    void drop_record(const char* table, const COLLECTION* outsect);
    /// Tables with records by load address; none without table support.
    std::vector<LOAD_DATA_TABLE*> shown_tables() const;

    const char* prefix_;
    std::map<std::string, LOAD_DATA_TABLE*> tables_;
};
