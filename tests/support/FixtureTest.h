// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include <memory>

namespace support
{

/// A test that does something before and after each of its functions and of their data rows.
class FunctionTest : public QObject
{
    Q_OBJECT

protected slots:
    void init() { begin(); }
    void cleanup() { end(); }

protected:
    virtual void begin() {}
    virtual void end() {}
};

/// A test each of whose functions and data rows has a fixture of its own.
template <typename Fixture, typename Test = FunctionTest>
class FixtureTest : public Test
{
protected:
    void begin() override
    {
        Test::begin();
        m_fixture = std::make_unique<Fixture>();
    }
    void end() override
    {
        m_fixture.reset();
        Test::end();
    }

    std::unique_ptr<Fixture> m_fixture;
};

} // namespace support
