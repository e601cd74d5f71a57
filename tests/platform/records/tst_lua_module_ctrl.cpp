// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <luawrapper/LuaModuleCtrl.h>

#include <QTemporaryDir>

#include <lua.hpp>

#include <atomic>
#include <memory>
#include <thread>

using luawrapper::LuaModuleCtrl;
using utils::EErrorCode;
using utils::NVError;

namespace
{

/// What Lua's own compiler makes of a chunk.
QByteArray compiled(const QByteArray& source)
{
    QByteArray chunk;
    const std::unique_ptr<lua_State, decltype(&lua_close)> state(luaL_newstate(), &lua_close);
    const auto append = [](lua_State*, const void* bytes, std::size_t size, void* target) {
        static_cast<QByteArray*>(target)->append(static_cast<const char*>(bytes), static_cast<int>(size));
        return 0;
    };
    if (luaL_loadbufferx(state.get(), source.constData(), static_cast<std::size_t>(source.size()), "=source", "t") ==
        LUA_OK) {
        lua_dump(state.get(), append, &chunk, 0);
    }
    return chunk;
}

} // namespace

class LuaModuleCtrlTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    LuaModuleCtrl& m_modules = *utils::CSingletonT<LuaModuleCtrl>::instance();

    std::string write(const QByteArray& chunk)
    {
        QFile file(m_dir.filePath("模块.lua"));
        const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(chunk) == chunk.size();
        return written ? file.fileName().toStdString() : std::string();
    }
    NVError load(const QByteArray& chunk) { return m_modules.load(write(chunk)); }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        // Whatever a broken file leaves behind, it is not what was there before.
        QVERIFY(load("return { before = true }").isSuccess());
        QVERIFY(m_modules.checkModule({"before"}));
    }

    void aPathIsOnWhenEveryKeyAlongItIsOn_data()
    {
        const support::DataRows<QStringList, bool> add("path", "on");
        const auto row = [&add](const QStringList& path, bool on) {
            add(path.join('/') + (on ? " is on" : " is off"), path, on);
        };
        row({"a"}, true);
        row({"a", "b"}, true);
        row({"a", "b", "c"}, true);
        row({"a", "b", "d"}, false);
        row({"a", "off"}, false);
        row({"a", "off", "inside"}, false);
        row({"a", "missing"}, false);
        row({"leaf"}, true);
        row({"leaf", "below"}, false);
        row({"false"}, false);
        row({"explicit", "child"}, true);
        row({"b"}, false);
        row({"b", "c"}, false);
        row({"A"}, false);
        row({""}, false);
        row({"on"}, false);
        row({"a", "on"}, false);
        row({}, false);
    }
    void aPathIsOnWhenEveryKeyAlongItIsOn()
    {
        QFETCH(QStringList, path);
        QFETCH(bool, on);
        const NVError error = load("return { a = { b = { c = true, d = false }, off = { on = false, inside = true } },"
                                   " leaf = true, ['false'] = false, explicit = { on = true, child = true } }");
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
        std::list<std::string> keys;
        for (const QString& key : path) {
            keys.push_back(key.toStdString());
        }
        QCOMPARE(m_modules.checkModule(keys), on);
    }

    void theWholeConfigurationCanBeSwitchedOff()
    {
        QVERIFY(load("return { on = false, a = true }").isSuccess());
        QVERIFY(!m_modules.checkModule({"a"}));
    }

    void theFileMayComputeItsSwitches()
    {
        const NVError error = load("\xEF\xBB\xBFlocal t = {}\nfor i, name in ipairs({'a', 'b'}) do\n"
                                   "t[string.format('%s%d', name:upper(), i)] = math.max(i, 2) == i end\nreturn t");
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
        QVERIFY(!m_modules.checkModule({"A1"}));
        QVERIFY(m_modules.checkModule({"B2"}));
    }

    void theShippedConfigurationHasEveryModuleOfTheClient()
    {
        const NVError error = m_modules.load(support::sourceFile("data/modules.lua").toStdString());
        QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
        QVERIFY(m_modules.checkModule({"mdl_portal", "mdl_portal_pb"}));
        for (const char* key : {"future", "stock", "credit", "gold", "futures_option", "option", "ggt", "neeq", "sgt",
                                "outter", "ib", "interbank"}) {
            QVERIFY2(m_modules.checkModule({"mdl_tradetype", std::string("mdl_tradetype_") + key}), key);
        }
    }

    void aBrokenFileIsReportedWithItsLineAndSwitchesEverythingOff_data()
    {
        const support::DataRows<QByteArray, int, QString> add("chunk", "code", "part");
        const auto row = [&add](const char* name, const QByteArray& chunk, EErrorCode code, const char* part) {
            add(name, chunk, static_cast<int>(code), QString(part));
        };
        const EErrorCode malformed = EErrorCode::Malformed;
        const EErrorCode exhausted = EErrorCode::ResourceExhausted;
        row("syntax error", "return {\n a = true,\n b = = }", malformed, " 第 3 行 有错误: ");
        row("run-time error", "local x = nil\nreturn x.y", malformed, " 第 2 行 有错误: ");
        row("own error", "error('自己的错误')", malformed, "自己的错误");
        row("error that is no text", "error({})", malformed, "未知错误");
        row("endless error text", "error(('x'):upper() .. '\\n' .. 'second line')", malformed, "X");
        row("empty file", "", malformed, "应返回一个表");
        row("no table", "return 7", malformed, "应返回一个表");
        row("value of another type", "return { a = { b = 1 } }", malformed, "开关 a.b 的值");
        row("key of another type", "return { a = { true } }", malformed, "开关 a 中的键应为文本");
        row("own switch of another type", "return { a = { on = 'yes' } }", malformed, "开关 a.on 的值");
        row("table that holds itself", "local t = {}\nt.t = t\nreturn t", malformed, "嵌套过深");
        row("tables that multiply", "local t = { a = true }\nfor i = 1, 15 do t = { a=t, b=t, c=t, d=t } end\nreturn t",
            malformed, "开关过多");
        row("endless loop", "local i = 0\nwhile true do i = i + 1 end", exhausted, " 第 2 行 执行时间过长");
        row("endless recursion", "local function f() return f() end\nreturn f()", exhausted, "执行时间过长");
        row("deep recursion", "local function f() return 1 + f() end\nreturn f()", exhausted, "占用内存过多");
        row("text that doubles", "local s = 'x'\nwhile true do s = s .. s end", exhausted, "占用内存过多");
        row("table that grows", "local t = {}\nfor i = 1, 1e9 do t[i] = 'x' .. i end", exhausted, "");
        row("deeply nested source", "return " + QByteArray(100000, '{'), malformed, "overflow");
    }
    void aBrokenFileIsReportedWithItsLineAndSwitchesEverythingOff()
    {
        QFETCH(QByteArray, chunk);
        QFETCH(int, code);
        QFETCH(QString, part);
        const std::string file = write(chunk);
        const NVError error = m_modules.load(file);
        QCOMPARE(static_cast<int>(error.code()), code);
        const QString text = QString::fromStdString(error.errorMsg());
        QVERIFY2(text.contains(QString::fromStdString(file)), qPrintable(text));
        QVERIFY2(text.contains(part), qPrintable(text));
        QVERIFY(text.size() < 600);
        QVERIFY(!m_modules.checkModule({"before"}));
    }

    void nothingReachesTheWorldOutside_data()
    {
        const support::DataRows<QByteArray> row("name");
        for (const char* name :
             {"os",           "io",           "package",     "require",     "load",         "loadfile",
              "dofile",       "debug",        "coroutine",   "utf8",        "_G",           "collectgarbage",
              "getmetatable", "setmetatable", "rawset",      "pcall",       "xpcall",       "print",
              "string.rep",   "string.dump",  "string.find", "string.gsub", "string.match", "string.gmatch",
              "string.pack",  "table.sort",   "('x').rep",   "('x').find",  "math.random"}) {
            row(name, QByteArray(name));
        }
    }
    void nothingReachesTheWorldOutside()
    {
        QFETCH(QByteArray, name);
        QVERIFY(load("return { absent = " + name + " == nil }").isSuccess());
        QVERIFY(m_modules.checkModule({"absent"}));
    }

    void aCompiledChunkIsRefused()
    {
        const QByteArray source = "return { compiled = true }";
        QVERIFY(load(source).isSuccess());
        QVERIFY(m_modules.checkModule({"compiled"}));
        const QByteArray chunk = compiled(source);
        QVERIFY(chunk.size() > source.size());
        const NVError error = load(chunk);
        QCOMPARE(error.code(), EErrorCode::Malformed);
        QVERIFY(!m_modules.checkModule({"compiled"}));
    }

    void aFileThatCannotBeReadIsReportedByName()
    {
        for (const QString& path : {m_dir.filePath("missing.lua"), m_dir.path()}) {
            QVERIFY(load("return { before = true }").isSuccess());
            const NVError error = m_modules.load(path.toStdString());
            QCOMPARE(error.code(), EErrorCode::NotFound);
            QVERIFY(QString::fromStdString(error.errorMsg()).contains(path));
            QVERIFY(!m_modules.checkModule({"before"}));
        }
    }

    void aHugeFileIsNotRead()
    {
        const NVError error = load("return {} --" + QByteArray(2 * 1024 * 1024, ' '));
        QCOMPARE(error.code(), EErrorCode::ResourceExhausted);
    }

    void switchesAreReadWhileTheyAreReplaced()
    {
        const std::string on = write("return { a = { b = true } }");
        QVERIFY(m_modules.load(on).isSuccess());
        std::atomic<bool> stop{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> readers;
        for (int i = 0; i < 3; ++i) {
            readers.emplace_back([&] {
                while (!stop) {
                    if (!m_modules.checkModule({"a", "b"})) {
                        ++wrong;
                    }
                }
            });
        }
        for (int i = 0; i < 200; ++i) {
            m_modules.load(on);
        }
        stop = true;
        for (std::thread& reader : readers) {
            reader.join();
        }
        QCOMPARE(wrong.load(), 0);
    }
};

TEST_WITHOUT_WIDGETS(LuaModuleCtrlTest)
#include "tst_lua_module_ctrl.moc"
