// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Metrics.h"
#include "service/engine/ErrorCodeNames.h"

#include <prometheus/counter.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>
#include <prometheus/text_serializer.h>

#include <sstream>

namespace service::daemon
{

namespace
{

using prometheus::Counter;
using prometheus::Family;
using prometheus::Gauge;
using prometheus::Histogram;

const Histogram::BucketBoundaries LatencyBuckets{0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1,
                                                 0.25,  0.5,    1,     2.5,  5,     10};

} // namespace

struct Metrics::Private {
    template <typename Metric>
    Family<Metric>& family(prometheus::detail::Builder<Metric> builder, const char* name, const char* help)
    {
        return builder.Name(name).Help(help).Register(registry);
    }
    Family<Counter>& counters(const char* name, const char* help)
    {
        return family(prometheus::BuildCounter(), name, help);
    }
    Family<Gauge>& gauges(const char* name, const char* help) { return family(prometheus::BuildGauge(), name, help); }

    prometheus::Registry registry;

    Counter& opened = counters("qav_connections_opened_total", "Connections that were accepted").Add({});
    Gauge& connections = gauges("qav_connections", "Connections that are open").Add({});
    Family<Counter>& refused =
        counters("qav_connections_refused_total", "Connections that were closed before they began, by reason");
    Family<Counter>& requests = counters("qav_requests_total", "Requests that were answered, by kind and outcome");
    Family<Histogram>& durations = family(prometheus::BuildHistogram(), "qav_request_duration_seconds",
                                          "Time from a request's arrival to the end of its answer, by kind");
    Gauge& underWay = gauges("qav_requests_under_way", "Requests that are not answered yet").Add({});
    Family<Counter>& bytes = counters("qav_bytes_total", "Bytes of messages, by direction");
    Counter& received = bytes.Add({{"direction", "received"}});
    Counter& sent = bytes.Add({{"direction", "sent"}});
    Gauge& output = gauges("qav_output_bytes", "Bytes that wait for the network to take them").Add({});
    Gauge& held =
        gauges("qav_held_bytes", "Answers that wait for their clients, as large as they will be on the network")
            .Add({});
    Gauge& receivedBytes =
        gauges("qav_received_bytes", "Messages beyond 4 KiB that are being received or carried out").Add({});
    Family<Gauge>& certificateEnd =
        gauges("qav_certificate_end_seconds", "When the certificate ends, in seconds since 1970 UTC");
    Family<Gauge>& queues = gauges("qav_queue_depth", "Tasks that wait for a thread, by queue");
};

Metrics::Metrics() : m_d(new Private) {}

Metrics::~Metrics() = default;

void Metrics::connectionOpened()
{
    m_d->opened.Increment();
    m_d->connections.Increment();
}

void Metrics::connectionClosed()
{
    m_d->connections.Decrement();
}

void Metrics::connectionRefused(const char* reason)
{
    m_d->refused.Add({{"reason", reason}}).Increment();
}

void Metrics::requestDone(const std::string& kind, utils::EErrorCode outcome, Seconds duration)
{
    m_d->requests.Add({{"kind", kind}, {"outcome", service::nameOfErrorCode(outcome).key}}).Increment();
    m_d->durations.Add({{"kind", kind}}, LatencyBuckets).Observe(duration.count());
}

void Metrics::bytesReceived(std::int64_t bytes)
{
    m_d->received.Increment(static_cast<double>(bytes));
}

void Metrics::bytesSent(std::int64_t bytes)
{
    m_d->sent.Increment(static_cast<double>(bytes));
}

void Metrics::requestsUnderWay(int change)
{
    m_d->underWay.Increment(change);
}

void Metrics::outputBytes(std::int64_t change)
{
    m_d->output.Increment(static_cast<double>(change));
}

void Metrics::setHeldBytes(std::size_t bytes)
{
    m_d->held.Set(static_cast<double>(bytes));
}

void Metrics::setReceivedBytes(std::size_t bytes)
{
    m_d->receivedBytes.Set(static_cast<double>(bytes));
}

void Metrics::setCertificateEnd(std::int64_t seconds)
{
    m_d->certificateEnd.Add({}).Set(static_cast<double>(seconds));
}

void Metrics::setQueueDepth(const char* queue, std::size_t depth)
{
    m_d->queues.Add({{"queue", queue}}).Set(static_cast<double>(depth));
}

std::string Metrics::text() const
{
    std::ostringstream out;
    prometheus::TextSerializer().Serialize(out, m_d->registry.Collect());
    return out.str();
}

} // namespace service::daemon
