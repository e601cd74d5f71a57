// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/NVError.h>

#include <exception>
#include <string>

namespace service
{

/// The rules refuse an operation. Thrown before anything is written.
class Refusal : public std::exception
{
public:
    Refusal(utils::EErrorCode code, const std::string& text) : m_error(code, text), m_text(text) {}
    const utils::NVError& error() const { return m_error; }
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    utils::NVError m_error;
    std::string m_text;
};

} // namespace service
