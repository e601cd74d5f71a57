// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace nvservice
{

/// The names of the conditions in a CQueryKey. <nvservice/DataType.h> says which conditions a data type has; a query
/// with any other one is refused (`InvalidValue`). Times are milliseconds since 1970 UTC.
namespace QueryCondition
{

constexpr char Group[] = "group";                    ///< number: the id of a group, which may have been deleted
constexpr char GroupRevision[] = "group-revision";   ///< number: a revision of the group
constexpr char ConfigRevision[] = "config-revision"; ///< number: a revision of the group's risk configuration
constexpr char At[] = "at";                          ///< number: a time; the last millisecond that counts
constexpr char Since[] = "since";                    ///< number: a time; entries of this millisecond or later
constexpr char Until[] = "until";                    ///< number: a time; entries of this millisecond or earlier
constexpr char User[] = "user";                      ///< text: a log-in name
constexpr char RecordType[] = "data-type";           ///< number: a code of DataType
constexpr char Operation[] = "operation";            ///< number: an EZvDataOperation
constexpr char Outcome[] = "outcome";                ///< text: "ok", "refused", or number: the code of an error
constexpr char Details[] = "details";                ///< number: 1 to get the states before and after, too
constexpr char PageSize[] = "page-size";             ///< number: how many records are wanted at most, 1 to 1000
constexpr char Cursor[] = "cursor";                  ///< text: where the page begins; `next` of the page before

} // namespace QueryCondition

} // namespace nvservice
