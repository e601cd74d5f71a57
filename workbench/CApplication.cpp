// SPDX-License-Identifier: Apache-2.0
#include "CApplication.h"

#include <QLoggingCategory>

#include <exception>

namespace workbench
{

namespace
{

Q_LOGGING_CATEGORY(lcExceptions, "qav.exceptions")

} // namespace

void logException(const char* className)
{
    try {
        throw;
    } catch (const std::exception& e) {
        qCWarning(lcExceptions, "%s threw: %s", className, e.what());
    } catch (...) {
        qCWarning(lcExceptions, "%s threw something that is not an exception", className);
    }
}

CApplication::CApplication(int& argc, char** argv) : QApplication(argc, argv) {}

CApplication::~CApplication() = default;

bool CApplication::notify(QObject* receiver, QEvent* event)
{
    // The event may destroy the receiver.
    const char* const className = receiver->metaObject()->className();
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        logException(className);
        return false;
    }
}

} // namespace workbench
