// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QApplication>

namespace workbench
{

/// Logs the exception that is being handled, with the name of the class whose code has thrown it.
void logException(const char* className);

/// The application of the client. An exception that leaves an event handler or a slot, of a plug-in for example, is
/// logged and dropped.
class CApplication : public QApplication
{
    Q_OBJECT

public:
    CApplication(int& argc, char** argv);
    ~CApplication() override;

    bool notify(QObject* receiver, QEvent* event) override;
};

} // namespace workbench
