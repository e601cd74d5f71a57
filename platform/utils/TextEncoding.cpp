// SPDX-License-Identifier: Apache-2.0
#include <utils/TextEncoding.h>
#include <utils/Translation.h>

#include <QTextCodec>

namespace utils
{

namespace
{

bool decodeUtf8(const QByteArray& bytes, QString& text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

QTextCodec& gb18030()
{
    return *QTextCodec::codecForName("GB18030");
}

QByteArray encodeGb18030(const QString& text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return gb18030().fromUnicode(text.constData(), text.size(), &state);
}

/// The codec says nothing of what it can't read. It leaves out an incomplete character at the end, and the rest becomes
/// replacement characters, which valid bytes may mean as well.
bool decodeGb18030(const QByteArray& bytes, QString& text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QByteArray ended = bytes + '\n';
    text = gb18030().toUnicode(ended.constData(), ended.size(), &state);
    if (text.contains(QChar::ReplacementCharacter) && encodeGb18030(text) != ended) {
        return false;
    }
    text.chop(1);
    return true;
}

/// Whether there are characters beyond ASCII, all of them everyday Chinese.
bool isEverydayChinese(const QString& text)
{
    const QByteArray bytes = encodeGb18030(text);
    bool isFound = false;
    for (int i = 0; i < bytes.size(); ++i) {
        const auto lead = static_cast<uchar>(bytes.at(i));
        if (lead < 0x80) {
            continue;
        }
        const bool isListed = lead == 0xA1 || lead == 0xA3 || (lead >= 0xB0 && lead <= 0xF7);
        if (!isListed || static_cast<uchar>(bytes.at(++i)) < 0xA1) {
            return false;
        }
        isFound = true;
    }
    return isFound;
}

/// Line ends are the same bytes in both encodings, and part of no other character.
bool hasLineThatSpeaksForUtf8(QByteArray bytes)
{
    for (const QByteArray& line : bytes.replace('\r', '\n').split('\n')) {
        QString text;
        const bool isUtf8 = decodeUtf8(line, text) && isEverydayChinese(text);
        if (isUtf8 && !(decodeGb18030(line, text) && isEverydayChinese(text))) {
            return true;
        }
    }
    return false;
}

NVError detect(const QByteArray& bytes, QString& text)
{
    QString other;
    const bool isUtf8 = decodeUtf8(bytes, text);
    if (!decodeGb18030(bytes, other) || (isUtf8 && text == other) || hasLineThatSpeaksForUtf8(bytes)) {
        return isUtf8 ? NVError()
                      : NVError(EErrorCode::Malformed, utils::text("utils", "文件不是UTF-8或GB18030编码的文本"));
    }
    text = other;
    return isUtf8
               ? NVError(EErrorCode::Conflict, utils::text("utils", "文件既可以读作UTF-8，也可以读作GB18030编码的文本"))
               : NVError();
}

NVError decode(const QByteArray& bytes, ETextEncoding encoding, QString& text)
{
    const QByteArray mark("\xEF\xBB\xBF");
    if (bytes.contains('\0')) {
        return {EErrorCode::Malformed, utils::text("utils", "文件不是UTF-8或GB18030编码的文本")};
    }
    if (encoding == ETextEncoding::Gb18030) {
        return decodeGb18030(bytes, text)
                   ? NVError()
                   : NVError(EErrorCode::Malformed, utils::text("utils", "文件不是GB18030编码的文本"));
    }
    const bool hasMark = bytes.startsWith(mark);
    if (!hasMark && encoding == ETextEncoding::Detected) {
        return detect(bytes, text);
    }
    return decodeUtf8(hasMark ? bytes.mid(mark.size()) : bytes, text)
               ? NVError()
               : NVError(EErrorCode::Malformed, utils::text("utils", "文件不是UTF-8编码的文本"));
}

} // namespace

NVError decodeText(const QByteArray& bytes, ETextEncoding encoding, QString& text)
{
    const NVError error = decode(bytes, encoding, text);
    if (!error.isSuccess()) {
        text.clear();
    }
    return error;
}

} // namespace utils
