#pragma once

#include "platform/adodb/providers/KeyOrder.h"
#include "platform/adodb/providers/Shape.h"

namespace ADODB {

/// A statement as this server can parse it.
struct PostgresText {
    String text;
    std::vector<bool> negative;  ///< for each literal: the minus sign in front of it belongs to its value
    bool readsOnly = false;      ///< it is a SELECT that locks nothing and calls no function but the usual aggregates
};

/// Translates a statement, and replaces these literals, which point into it, by the parameters "$1", "$2" and so on:
///
/// - `SELECT @@IDENTITY` reads the last number of an identity column;
/// - `DELETE * FROM` loses the star;
/// - `ORDER BY` sorts nulls before all values, `DESC` behind them, as the other engines do;
/// - a SELECT from tables sorts rows that are equal otherwise by the primary keys of the tables (`KeyOrderOf`), because
///   this server returns them in another order after one of them was updated;
/// - `LIKE` compares without regard to the case of ASCII letters, and a backslash in its pattern is a plain character;
/// - a chain of conditions "a=1 OR a=2" becomes "a IN (1,2)", because the time in which the server plans a chain
///   grows with the square of its length;
/// - a minus sign in front of a literal becomes a part of the parameter's value, because the server can't choose among
///   its minus operators for a parameter without a type.
///
/// A text with a comment or a parameter of its own is translated up to it. Any thread may call.
PostgresText ForPostgres(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys);

}  // namespace ADODB
