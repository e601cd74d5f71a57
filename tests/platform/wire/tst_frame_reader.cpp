// SPDX-License-Identifier: Apache-2.0
#include "platform/wire/WireSamples.h"

#include "platform/wire/FrameReader.h"
#include "platform/wire/Protocol.h"
#include "support/TestProgram.h"

#include <rapidcheck.h>

using namespace wire;
using utils::EErrorCode;
using utils::NVError;

namespace
{

/// Everything in pieces of the given sizes; a piece is an allocation of its own, so that a read beyond it is seen by
/// the address sanitizer.
template <typename NextSize>
std::vector<Frame> framesOf(const std::string& stream, FrameReader& reader, NVError& error, const NextSize& nextSize)
{
    std::vector<Frame> frames;
    for (std::size_t at = 0; at < stream.size() && error.isSuccess();) {
        const std::size_t size = std::min(nextSize(), stream.size() - at);
        const std::vector<char> piece(stream.begin() + long(at), stream.begin() + long(at + size));
        for (std::size_t taken = 0; taken < size && error.isSuccess();) {
            taken += reader.feed(piece.data() + taken, size - taken, error);
            if (reader.hasFrame()) {
                frames.push_back(reader.take());
            }
        }
        at += size;
    }
    return frames;
}

std::string streamOf(const std::vector<samples::WireSample>& samples)
{
    std::string stream;
    for (const samples::WireSample& sample : samples) {
        stream += sample.frame;
    }
    return stream;
}

std::string lengthBytes(std::int64_t length)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((length >> shift) & 0xFF);
    }
    return bytes;
}

/// The memory of this process that is in use, in bytes.
std::size_t residentBytes()
{
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').at(1).toULong() * 4096;
}

} // namespace

/// Frames come out of any stream of bytes, or the reader says that it has lost its place.
class FrameReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void messagesComeOutByteByByte()
    {
        const auto samples = samples::wireSamples();
        FrameReader reader(MaxMessageBytes);
        NVError error;
        const auto frames = framesOf(streamOf(samples), reader, error, [] { return std::size_t(1); });
        QVERIFY(error.isSuccess());
        QCOMPARE(frames.size(), samples.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            QCOMPARE(frames[i], samples[i].frame);
        }
        QVERIFY(!reader.isInFrame());
    }

    void messagesComeOutOfPiecesOfAnySize()
    {
        const auto samples = samples::wireSamples();
        const std::string stream = streamOf(samples);
        QVERIFY(rc::check([&] {
            FrameReader reader(MaxMessageBytes);
            NVError error;
            const auto frames = framesOf(stream, reader, error, [] { return *rc::gen::inRange<std::size_t>(1, 700); });
            RC_ASSERT(error.isSuccess());
            RC_ASSERT(frames.size() == samples.size());
            for (std::size_t i = 0; i < frames.size(); ++i) {
                RC_ASSERT(frames[i] == samples[i].frame);
            }
        }));
    }

    void aMessageThatIsCutAnywhereNeverComesOut()
    {
        for (const samples::WireSample& sample : samples::wireSamples()) {
            for (std::size_t cut = 0; cut < sample.frame.size(); ++cut) {
                FrameReader reader(MaxMessageBytes);
                NVError error;
                const std::string part = sample.frame.substr(0, cut);
                QVERIFY(framesOf(part, reader, error, [] { return std::size_t(1 << 20); }).empty());
                QVERIFY(error.isSuccess());
                QCOMPARE(reader.isInFrame(), cut > 0);
                // The rest completes it.
                const auto frames =
                    framesOf(sample.frame.substr(cut), reader, error, [] { return std::size_t(1 << 20); });
                QCOMPARE(frames.size(), std::size_t(1));
                QCOMPARE(frames[0], sample.frame);
            }
        }
    }

    void nothingIsTakenWhileAFrameWaits()
    {
        const Frame ping = samples::frameOf(encode(Ping{1}));
        FrameReader reader(MaxMessageBytes);
        NVError error;
        const std::string both = ping + ping;
        QCOMPARE(reader.feed(both.data(), both.size(), error), ping.size());
        QVERIFY(reader.hasFrame());
        QCOMPARE(reader.feed(both.data(), both.size(), error), std::size_t(0));
        QVERIFY(error.isSuccess());
        QCOMPARE(reader.take(), ping);
        QVERIFY(!reader.hasFrame());
    }

    void aLengthOutsideTheLimitsLosesTheFraming_data()
    {
        const support::DataRows<qint64, int> row("length", "code");
        row("zero", 0, int(EErrorCode::Malformed));
        row("shorter than a document", 4, int(EErrorCode::Malformed));
        row("negative", -1, int(EErrorCode::Malformed));
        row("least", qint64(std::numeric_limits<qint32>::min()), int(EErrorCode::Malformed));
        row("one too long", 1001, int(EErrorCode::ResourceExhausted));
        row("two gigabytes", qint64(std::numeric_limits<qint32>::max()), int(EErrorCode::ResourceExhausted));
        row("another protocol", 0x20544547, int(EErrorCode::ResourceExhausted)); // "GET "
    }
    void aLengthOutsideTheLimitsLosesTheFraming()
    {
        QFETCH(qint64, length);
        QFETCH(int, code);
        FrameReader reader(1000);
        NVError error;
        framesOf(lengthBytes(length) + "more", reader, error, [] { return std::size_t(1); });
        QCOMPARE(int(error.code()), code);
        QVERIFY(!error.errorMsg().empty());
        QVERIFY(!reader.hasFrame());
        // It stays lost.
        NVError again;
        const Frame ping = samples::frameOf(encode(Ping{1}));
        QCOMPARE(reader.feed(ping.data(), ping.size(), again), std::size_t(0));
        QCOMPARE(again.code(), error.code());
    }

    void aFrameOfExactlyTheLimitComesThrough()
    {
        FrameReader reader(1000);
        NVError error;
        const auto frames =
            framesOf(lengthBytes(1000) + std::string(996, 'x'), reader, error, [] { return std::size_t(77); });
        QVERIFY(error.isSuccess());
        QCOMPARE(frames.size(), std::size_t(1));
        QCOMPARE(frames[0].size(), std::size_t(1000));
    }

    void aNewLimitHoldsForTheNextFrame()
    {
        const Frame ping = samples::frameOf(encode(Ping{1}));
        FrameReader reader(ping.size() - 1);
        reader.setMaxFrameBytes(ping.size());
        NVError error;
        QCOMPARE(framesOf(ping, reader, error, [] { return std::size_t(1); }).size(), std::size_t(1));
        reader.setMaxFrameBytes(ping.size() - 1);
        QCOMPARE(framesOf(ping, reader, error, [] { return std::size_t(1); }).size(), std::size_t(0));
        QCOMPARE(error.code(), EErrorCode::ResourceExhausted);
    }

    void announcedBytesThatDoNotComeCostNoMemory()
    {
        // A hundred peers that each announce the longest message and send a few bytes of it.
        const std::size_t before = residentBytes();
        QVERIFY(before > 0);
        std::vector<std::unique_ptr<FrameReader>> readers;
        for (int i = 0; i < 100; ++i) {
            readers.push_back(std::make_unique<FrameReader>(MaxMessageBytes));
            NVError error;
            framesOf(lengthBytes(std::int64_t(MaxMessageBytes)) + "abc", *readers.back(), error,
                     [] { return std::size_t(5); });
            QVERIFY(error.isSuccess());
            QVERIFY(readers.back()->isInFrame());
        }
        QVERIFY(residentBytes() < before + 64 * 1024 * 1024); // 1.5 GB were announced
    }

    void noiseNeverBreaksTheReader()
    {
        QVERIFY(rc::check([] {
            const auto noise = *rc::gen::container<std::string>(rc::gen::arbitrary<char>());
            FrameReader reader(4096);
            NVError error;
            for (const Frame& frame : framesOf(noise, reader, error, [] { return std::size_t(3); })) {
                Message message;
                decode(frame, LimitsBeforeLogIn, message);
                RC_ASSERT(frame.size() <= 4096U);
            }
        }));
    }
};

TEST_WITHOUT_WIDGETS(FrameReaderTest)
#include "tst_frame_reader.moc"
