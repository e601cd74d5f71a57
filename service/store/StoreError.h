#pragma once

#include <utils/NVError.h>

#include <QSqlError>

#include <exception>
#include <string>

namespace service
{

/// Leaves the store's own code only where a public operation turns it into its typed error.
class StoreError : public std::exception
{
public:
    StoreError(utils::EErrorCode code, const std::string& text) : m_error(code, text), m_text(text) {}
    /// The text tells the user what happened to the disk or file; unique key violations become `Duplicate`.
    static StoreError fromSql(const QSqlError& error);

    const utils::NVError& error() const { return m_error; }
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    utils::NVError m_error;
    std::string m_text;
};

} // namespace service
