// SPDX-License-Identifier: Apache-2.0
// A query of many groups over TLS on the loopback address, from the store to decoded records, beside its stages run
// alone: encoding, loopback, decoding. All times are those of the clock on the wall, because the point is that the
// stages overlap; so the machine should have nothing else to do.

#include "Harness.h"
#include "TlsLoopback.h"

#include "service/daemon/DaemonThread.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/ReplyEncoder.h"
#include "service/engine/DataEngine.h"
#include "service/sampledata/SampleData.h"

#include <QAV/CNetworkTransport.h>
#include <nvservice/DataType.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QThreadPool>

#include <chrono>
#include <future>
#include <stdexcept>

namespace
{

using bench::Side;
using WallClock = std::chrono::steady_clock;
using Records = std::vector<nvservice::IDataPtr>;

constexpr char User[] = "admin";
constexpr char Password[] = "admin123";
constexpr int Rounds = 5;
constexpr double Bound = 2;

double since(WallClock::time_point begin)
{
    return std::chrono::duration<double>(WallClock::now() - begin).count();
}

/// A thread that lives as long as the program, as those of daemon and transport do: its memory comes from the same
/// place in every round.
class WorkThread
{
public:
    WorkThread() { m_pool.setExpiryTimeout(-1); }

    /// The time that `work` takes, without the end of what it returns.
    template <typename Work>
    double timeOf(const Work& work)
    {
        std::promise<double> time;
        m_pool.start([&] {
            const auto begin = WallClock::now();
            const auto made = work();
            time.set_value(since(begin));
        });
        return time.get_future().get();
    }

private:
    QThreadPool m_pool;
};

void require(const utils::NVError& error)
{
    if (!error.isSuccess()) {
        throw std::runtime_error(error.errorMsg());
    }
}

nvservice::CKolmQueryDataReq allGroups()
{
    nvservice::CKolmQueryDataReq request;
    request.dataType = nvservice::DataType::AccountGroup;
    return request;
}

service::DataEnginePtr makeStore(const QString& file, int groups)
{
    const auto options = service::StoreOptions::forCreating(file);
    utils::NVError error;
    const service::StorePtr store = service::Store::open(options, error);
    require(error);
    service::SampleOptions sample;
    sample.servers = 1;
    sample.groups = groups;
    sample.accounts = 5000;
    require(service::generateSampleData(*store, sample));
    const auto engines = service::DataEngine::openAll(store, error);
    require(error);
    return engines.at(0);
}

std::vector<bson::BSONObj> encode(const Records& records)
{
    std::vector<bson::BSONObj> chunks;
    wire::ReplyEncoder encoder(1);
    for (const nvservice::IDataPtr& record : records) {
        require(encoder.add(*record));
        if (encoder.isFull()) {
            chunks.push_back(encoder.take());
        }
    }
    if (!encoder.isEmpty()) {
        chunks.push_back(encoder.take());
    }
    return chunks;
}

Records decode(const std::vector<bson::BSONObj>& chunks)
{
    Records records;
    for (const bson::BSONObj& chunk : chunks) {
        wire::Message message;
        require(wire::decode({chunk.objdata(), static_cast<std::size_t>(chunk.objsize())}, wire::LimitsAfterLogIn,
                             message));
        require(std::get<wire::ReplyChunk>(message).records(records));
    }
    return records;
}

QAV::ITransport::Reply ask(QAV::ITransport& transport)
{
    std::promise<QAV::ITransport::Reply> promise;
    transport.query(allGroups(), [&](QAV::ITransport::Reply reply) { promise.set_value(std::move(reply)); });
    QAV::ITransport::Reply reply = promise.get_future().get();
    require(reply.error);
    return reply;
}

void logIn(QAV::ITransport& transport)
{
    std::promise<utils::NVError> promise;
    transport.logIn(User, Password, [&](const utils::NVError& error, const auto&) { promise.set_value(error); });
    require(promise.get_future().get());
}

int run(int groups)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("store.db");
    const service::DataEnginePtr engine = makeStore(file, groups);
    const service::LogInReply session = engine->logIn(User, Password);
    require(session.error);

    support::TestCertificates certificates;
    service::daemon::Configuration configuration = testservice::plainConfiguration(file, {});
    configuration.listen.front().plaintext = false;
    configuration.tls = {certificates.certificate(), certificates.key()};
    const testservice::DaemonThread daemon(configuration);
    require(daemon.startError());
    QAV::NetworkServer address;
    address.host = "127.0.0.1";
    address.port = static_cast<std::uint16_t>(daemon.port());
    address.caFile = certificates.authority().toStdString();
    QAV::CNetworkTransport transport(address);
    logIn(transport);

    const Records records = engine->query(session.session, allGroups()).records;
    const std::vector<bson::BSONObj> chunks = encode(records);
    std::size_t bytes = 0;
    for (const bson::BSONObj& chunk : chunks) {
        bytes += static_cast<std::size_t>(chunk.objsize());
    }
    std::printf("%zu groups, %.1f MB, %zu bytes each\n", records.size(), static_cast<double>(bytes) * 1e-6,
                bytes / std::max<std::size_t>(records.size(), 1));

    WorkThread databaseThread;
    WorkThread encodingThread;
    WorkThread decodingThread;
    Side database{"database alone",
                  [&] { return databaseThread.timeOf([&] { return engine->query(session.session, allGroups()); }); }};
    Side encoding{"encoding alone", [&] { return encodingThread.timeOf([&] { return encode(records); }); }};
    Side loopback{"TLS loopback alone", [&] { return bench::sendOverTls(chunks, certificates); }};
    Side decoding{"decoding alone", [&] { return decodingThread.timeOf([&] { return decode(chunks); }); }};
    Side whole{"the whole query", [&] {
                   const auto begin = WallClock::now();
                   const QAV::ITransport::Reply reply = ask(transport);
                   const double time = since(begin);
                   if (reply.records.size() != records.size()) {
                       throw std::runtime_error("records are missing");
                   }
                   return time;
               }};
    bench::interleave({&database, &encoding, &loopback, &decoding, &whole}, Rounds);

    bench::Report report;
    for (const Side* side : {&database, &encoding, &loopback, &decoding, &whole}) {
        report.time(side->name, side->result);
    }
    const double slowest = std::max({encoding.result, loopback.result, decoding.result});
    report.time("the whole beyond the database", whole.result - database.result);
    report.atMost("beside the slowest stage alone", (whole.result - database.result) / slowest, Bound);
    return report.allKept() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    bench::prepareProcess();
    const QCoreApplication application(argc, argv);
    try {
        return run(argc > 1 ? QByteArray(argv[1]).toInt() : 100000);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
