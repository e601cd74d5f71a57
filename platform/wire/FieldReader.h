// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <utils/NVError.h>

#include <cstdint>
#include <limits>
#include <string>

namespace wire
{

/// Reads the fields of a message that nvservice::checkDocument has accepted. It keeps the error of the first wrong
/// field and ignores later fields.
class FieldReader
{
public:
    explicit FieldReader(const bson::BSONObj& document) : m_document(document) {}

    const utils::NVError& error() const { return m_error; }
    bool isGood() const { return m_error.isSuccess(); }

    template <typename Integer>
    void number(const char* name, Integer& value, std::int64_t least)
    {
        const bson::BSONElement element = m_document.getField(name);
        const bool isInteger = element.type() == bson::NumberInt || element.type() == bson::NumberLong;
        const std::int64_t wide = isInteger ? element.numberLong() : 0;
        if (isInteger && wide >= least && wide <= std::numeric_limits<Integer>::max()) {
            value = static_cast<Integer>(wide);
        } else {
            refuse(name);
        }
    }

    /// Reads a text of at most `maxBytes`.
    void text(const char* name, std::string& value, std::size_t maxBytes);
    /// Reads the code and the text of an outcome. An unknown code becomes `Failed`.
    void error(utils::NVError& value);
    /// Reads a required document; empty after an error.
    bson::BSONObj document(const char* name);
    bson::BSONElement optional(const char* name) const { return m_document.getField(name); }

    void refuse(const char* name);
    void refuse(utils::NVError error);

private:
    bson::BSONObj m_document;
    utils::NVError m_error;
};

} // namespace wire
