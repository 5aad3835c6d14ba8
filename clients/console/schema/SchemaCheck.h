#pragma once

#include "console/Server.h"

namespace Console {

/// A difference between the tables of a database and those of its version.
struct SchemaDifference {
    std::string table;
    std::string text;  ///< one clause, such as "has no column Gamma_INT"
};

/// Compares tables, columns with their types, widths, defaults and collations, keys and indexes of an open clinic
/// database with those of a version. Triggers, other constraints, indexes of another kind (partial, descending, of
/// expressions) and other storage engines than InnoDB are differences. Reads the catalog of the engine and changes
/// nothing; the tables of the version are created in memory. Tables of the program that were never needed may be
/// missing. Raises what the engine raises.
std::vector<SchemaDifference> CompareSchema(const Ref<Connection>& con, Platform::Long version);

}  // namespace Console
