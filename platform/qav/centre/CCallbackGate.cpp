// SPDX-License-Identifier: Apache-2.0
#include <QAV/CCallbackGate.h>

#include <thread>

namespace QAV
{

CCallbackGate::CCallbackGate() : m_state(boost::make_shared<State>(0U)) {}

CCallbackGate::~CCallbackGate()
{
    close();
}

void CCallbackGate::close()
{
    m_state->fetch_or(Closed);
    while (m_state->load() != Closed) {
        std::this_thread::yield();
    }
}

} // namespace QAV
