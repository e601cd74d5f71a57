// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

#include <QMap>
#include <QSet>

namespace
{

/// A folder of the tree and what its files may include of the tree; headers from outside (Qt, Boost, the standard
/// library) are everybody's, unless `forbidden` names their beginning.
struct Room {
    QString folder;
    QStringList allowed;
    QStringList forbidden;
};

const QStringList AllOfTheSdk{"utils/", "nvservice/", "luawrapper/", "WQ/", "QAV/"};
const QStringList RequestHelpers{"panel/CLatestReplies.h", "panel/CReplyLabel.h", "panel/DataRequest.h"};

const QStringList RoomsOfTheWidgets{"controls/", "tablekit/", "hpf/", "simple/", "search/", "pinyin/"};

const QStringList RoomsOfTheClient{"centre/", "network/", "lookup/", "assets/", "tradelimit/", "widgets/"};

const QVector<Room> Rooms{
    {"exempt", AllOfTheSdk + QStringList{"exempt/"}, {}},
    {"risk", AllOfTheSdk + QStringList{"risk/", "exempt/"} + RequestHelpers, {}},
    {"editor", AllOfTheSdk + QStringList{"editor/"} + RequestHelpers, {}},
    {"panel", AllOfTheSdk + QStringList{"panel/", "editor/", "risk/"}, {}},
    {"platform/include/utils", {"utils/"}, {}},
    {"platform/include/luawrapper", {"utils/", "luawrapper/"}, {"QtWidgets", "QWidget"}},
    {"platform/include/nvservice", {"utils/", "nvservice/"}, {"QtWidgets", "QWidget"}},
    {"platform/include/WQ", {"utils/", "WQ/"}, {"QtNetwork"}},
    {"platform/include/QAV", AllOfTheSdk, {}},
    {"platform/utils", {"utils/"}, {}},
    {"platform/luawrapper", {"utils/", "luawrapper/"}, {"QtWidgets", "QWidget"}},
    {"platform/nvservice", {"utils/", "nvservice/"}, {"QtWidgets", "QWidget"}},
    {"platform/wq", QStringList{"utils/", "WQ/"} + RoomsOfTheWidgets, {"QtNetwork"}},
    {"platform/wq/controls", {"utils/", "WQ/", "controls/"}, {}},
    {"platform/wq/search", {"utils/", "WQ/", "search/", "pinyin/"}, {}},
    {"platform/wq/tablekit", {"utils/", "WQ/", "tablekit/"}, {}},
    {"platform/wq/hpf", {"utils/", "WQ/", "search/", "tablekit/", "hpf/"}, {}},
    {"platform/wq/simple", {"utils/", "WQ/", "tablekit/", "simple/"}, {}},
    {"platform/qav", AllOfTheSdk + RoomsOfTheClient + QStringList{"platform/wire/"}, {}},
    {"platform/qav/centre", AllOfTheSdk + QStringList{"centre/"}, {"QtWidgets", "QWidget"}},
    {"platform/qav/network", AllOfTheSdk + QStringList{"network/", "platform/wire/"}, {"QtWidgets", "QWidget"}},
    {"platform/qav/lookup", AllOfTheSdk + QStringList{"lookup/"}, {}},
    {"platform/qav/assets", AllOfTheSdk + QStringList{"lookup/", "assets/"}, {}},
    {"platform/qav/tradelimit", AllOfTheSdk + QStringList{"lookup/", "tradelimit/"}, {}},
    {"platform/qav/widgets", AllOfTheSdk, {}},
    {"platform/wire", {"utils/", "nvservice/", "platform/wire/"}, {"QtWidgets", "QWidget"}},
    {"service", {"utils/", "nvservice/", "platform/wire/", "service/"}, {"QtWidgets", "QWidget"}},
    {"workbench", AllOfTheSdk + QStringList{"workbench/", "service/engine/", "service/sampledata/"}, {}},
    {"history", AllOfTheSdk + QStringList{"history/"}, {}},
    {"examples", AllOfTheSdk, {}},
};

/// Everything that begins with one of these belongs to the tree.
const QStringList TreeFolders{"utils/",   "nvservice/",  "luawrapper/", "WQ/",       "QAV/",        "panel/",
                              "editor/",  "risk/",       "exempt/",     "platform/", "service/",    "workbench/",
                              "tests/",   "benchmarks/", "engine/",     "store/",    "sampledata/", "import/",
                              "admin/",   "daemon/",     "controls/",   "tablekit/", "hpf/",        "simple/",
                              "history/", "search/",     "pinyin/",     "centre/",   "network/",    "lookup/",
                              "assets/",  "tradelimit/", "widgets/"};

bool startsWithOne(const QString& text, const QStringList& beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(), [&](const QString& b) { return text.startsWith(b); });
}

QStringList includesOf(const QString& fileName)
{
    static const QRegularExpression include("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]",
                                            QRegularExpression::MultilineOption);
    QStringList names;
    for (auto match = include.globalMatch(sourcetree::textOf(fileName)); match.hasNext();) {
        names << match.next().captured(1);
    }
    return names;
}

/// What a file includes against the rules of its room. A name without a folder means a file beside it, if there is one.
QStringList violations(const Room& room, const QString& fileName, const QStringList& includes)
{
    QStringList found;
    for (const QString& include : includes) {
        const bool beside = QFileInfo::exists(QFileInfo(sourcetree::root().filePath(fileName)).dir().filePath(include));
        const bool ofTheTree = !beside && startsWithOne(include, TreeFolders);
        if ((ofTheTree && !startsWithOne(include, room.allowed)) || startsWithOne(include, room.forbidden)) {
            found << fileName + " includes " + include;
        }
    }
    return found;
}

} // namespace

/// Who may include whom.
class IncludeRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void everyFolderIncludesOnlyWhatItMay_data()
    {
        const support::DataRows<int> row("room");
        for (int i = 0; i < Rooms.size(); ++i) {
            row(Rooms[i].folder, i);
        }
    }
    void everyFolderIncludesOnlyWhatItMay()
    {
        QFETCH(int, room);
        QStringList found;
        for (const QString& file : sourcetree::filesIn(Rooms[room].folder, {"*.h", "*.cpp"})) {
            found << violations(Rooms[room], file, includesOf(file));
        }
        QVERIFY2(found.isEmpty(), qPrintable('\n' + found.join('\n')));
    }

    void aForbiddenIncludeIsFound()
    {
        const Room& editor = Rooms[2];
        QCOMPARE(editor.folder, QString("editor"));
        QCOMPARE(violations(editor, "editor/x.cpp", {"panel/CAccountGroupRiskModel.h"}).size(), 1);
        QCOMPARE(violations(editor, "editor/x.cpp", {"panel/DataRequest.h", "QString", "WQ/CLineEdit.h"}).size(), 0);
        QCOMPARE(violations(editor, "editor/x.cpp", {"service/engine/DataEngine.h"}).size(), 1);
        QCOMPARE(violations(editor, "editor/x.cpp", {"engine/DataEngine.h"}).size(), 1);
    }
};

TEST_WITHOUT_WIDGETS(IncludeRulesTest)
#include "tst_include_rules.moc"
