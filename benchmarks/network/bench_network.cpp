// SPDX-License-Identifier: Apache-2.0
// A query of many groups over TLS on the loopback address, from the store to decoded records, beside its stages run
// alone: encoding, loopback, decoding. All times are those of the clock on the wall, because the point is that the
// stages overlap; so the machine should have nothing else to do.

#include "Harness.h"
#include "NetworkDesk.h"
#include "TlsLoopback.h"

#include "platform/wire/MessageCodec.h"
#include "platform/wire/ReplyEncoder.h"

#include <nvservice/Codec.h>

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

constexpr int Accounts = 5000;
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

std::vector<bson::BSONObj> encode(const Records& records)
{
    std::vector<bson::BSONObj> chunks;
    wire::ReplyEncoder encoder(1);
    for (const nvservice::IDataPtr& record : records) {
        bench::require(encoder.add(*record));
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
    nvservice::CRecordDecoder decoder;
    for (const bson::BSONObj& chunk : chunks) {
        wire::Message message;
        bench::require(wire::decode({chunk.objdata(), static_cast<std::size_t>(chunk.objsize())},
                                    wire::LimitsAfterLogIn, message));
        bench::require(std::get<wire::ReplyChunk>(message).records(records, &decoder));
    }
    return records;
}

int run(int groups)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("store.db");
    bench::makeDatabase(file, groups, Accounts);
    const service::DataEnginePtr engine = bench::openEngine(file);
    const service::LogInReply session = engine->logIn(bench::User, bench::Password);
    bench::require(session.error);

    support::TestCertificates certificates;
    bench::NetworkDesk desk(file, certificates);

    const Records records = engine->query(session.session, bench::allGroups()).records;
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
    Side database{"database alone", [&] {
                      return databaseThread.timeOf([&] { return engine->query(session.session, bench::allGroups()); });
                  }};
    Side encoding{"encoding alone", [&] { return encodingThread.timeOf([&] { return encode(records); }); }};
    Side loopback{"TLS loopback alone", [&] { return bench::sendOverTls(chunks, certificates); }};
    Side decoding{"decoding alone", [&] { return decodingThread.timeOf([&] { return decode(chunks); }); }};
    Side whole{"the whole query", [&] {
                   const auto begin = WallClock::now();
                   const std::size_t count = desk.queryAllGroups().size();
                   const double time = since(begin);
                   if (count != records.size()) {
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
