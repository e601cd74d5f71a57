// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "support/UnexpectedLog.h"

#include <WQ/CBaseWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionMenuItem>
#include <QTemporaryDir>

#include <cmath>

namespace
{

WQ::CUiResourceManager& theme()
{
    return *WQ::CUiResourceManager::instance();
}

/// Relative luminance and contrast as WCAG 2 defines them.
double luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double x = luminance(a);
    const double y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

QColor over(const QColor& top, const QColor& ground)
{
    const double part = top.alphaF();
    return QColor::fromRgbF(top.redF() * part + ground.redF() * (1 - part),
                            top.greenF() * part + ground.greenF() * (1 - part),
                            top.blueF() * part + ground.blueF() * (1 - part));
}

class Watcher : public WQ::CBaseWidget
{
public:
    Watcher() : WQ::CBaseWidget(nullptr) {}
    void onUiResourceChanged() override
    {
        seen << WQ::CUiResourceManager::instance()->colour(QStringLiteral("clr_window")).name();
        delete victim;
    }
    QStringList seen;
    QPointer<Watcher> victim;
};

void write(const QString& file, const QByteArray& text)
{
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    QCOMPARE(out.write(text), qint64(text.size()));
}

const QStringList ShippedThemes{QStringLiteral("dark"), QStringLiteral("light")};

} // namespace

class ThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHeaderShowsAHoverWhereItCanBeClicked()
    {
        WQ::CUiResourceManager::instance()->applyTo(*qApp);
        const auto picture = [](QStyle::ControlElement element, QStyleOption&& option, bool isHovered) {
            option.rect = QRect(0, 0, 60, 24);
            option.state = QStyle::State_Enabled;
            option.state.setFlag(QStyle::State_MouseOver, isHovered);
            QImage image(option.rect.size(), QImage::Format_RGB32);
            QPainter painter(&image);
            QApplication::style()->drawControl(element, &option, &painter);
            return image;
        };
        QVERIFY(picture(QStyle::CE_HeaderSection, QStyleOptionHeader(), true) !=
                picture(QStyle::CE_HeaderSection, QStyleOptionHeader(), false));
        QCOMPARE(picture(QStyle::CE_HeaderEmptyArea, QStyleOption(), true),
                 picture(QStyle::CE_HeaderEmptyArea, QStyleOption(), false));
    }

    void aCheckedMenuEntryHasItsMarkWithAnIconToo()
    {
        WQ::CUiResourceManager::instance()->applyTo(*qApp);
        QPixmap red(16, 16);
        red.fill(Qt::red);
        const auto picture = [&red](bool isChecked, bool hasIcon) {
            QStyleOptionMenuItem item;
            item.rect = QRect(0, 0, 200, 24);
            item.state = QStyle::State_Enabled | QStyle::State_Active;
            item.checkType = QStyleOptionMenuItem::NonExclusive;
            item.menuHasCheckableItems = true;
            item.checked = isChecked;
            item.maxIconWidth = 20;
            item.text = QStringLiteral("历史");
            item.icon = hasIcon ? QIcon(red) : QIcon();
            QImage image(item.rect.size(), QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            QApplication::style()->drawControl(QStyle::CE_MenuItem, &item, &painter);
            return image;
        };
        QCOMPARE(picture(true, true), picture(true, false));
        QVERIFY(picture(false, true) != picture(false, false));
        QVERIFY(picture(false, true) != picture(true, true));
    }

    void initTestCase() { theme().applyTo(*qApp); }

    void anIconHasItsSizeAndItsPictureAtEveryPixelRatio()
    {
        const QTemporaryDir folder;
        theme().setThemeDirectory(folder.path());
        const qreal ratio = qApp->devicePixelRatio();
        for (const char* name : {"edit-find", "view-refresh", "view-filter", "network-server", "color-management"}) {
            write(folder.filePath("icons.json"),
                  QByteArray(R"({"base": "dark", "images": {"img_icon": "breeze:)") + name + "\"}}");
            QVERIFY(theme().setTheme("icons"));
            for (const int size : {16, 22}) {
                QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // as the client does
                const QPixmap image = theme().image("img_icon", size);
                QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
                QCOMPARE(image.devicePixelRatio(), ratio);
                QCOMPARE(image.size(), QSize(size, size) * ratio);
                const QImage small =
                    image.toImage().scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                const QImage drawn = QIcon::fromTheme(name).pixmap(size).toImage();
                QCOMPARE(drawn.size(), QSize(size, size));
                double difference = 0;
                for (int y = 0; y < size; ++y) {
                    for (int x = 0; x < size; ++x) {
                        difference += qAbs(small.pixelColor(x, y).alpha() - drawn.pixelColor(x, y).alpha());
                    }
                }
                difference /= 255.0 * size * size;
                // Fine lines come out differently; another picture differs by 0.2 and more.
                QVERIFY2(difference < 0.1, qPrintable(QString("%1 %2: %3").arg(name).arg(size).arg(difference)));
            }
        }
    }

    void theFontFollowsTheScaleInEveryTheme()
    {
        const int normal = theme().font().pixelSize();
        QSignalSpy changes(&theme(), &WQ::CUiResourceManager::sigThemeChanged);
        theme().setFontScale(1.5);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(QApplication::font().pixelSize(), qRound(normal * 1.5));
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        QCOMPARE(QApplication::font().pixelSize(), qRound(normal * 1.5));
        theme().setFontScale(1);
        QCOMPARE(QApplication::font().pixelSize(), normal);
    }

    void cleanup()
    {
        theme().setThemeDirectory(QString());
        QVERIFY(theme().setTheme(QStringLiteral("dark")));
    }

    void darkIsTheFirstThemeAndBothAreCompiledIn()
    {
        QCOMPARE(theme().theme(), QStringLiteral("dark"));
        QCOMPARE(theme().themes(), ShippedThemes);
        QCOMPARE(theme().themeTitle(QStringLiteral("dark")), QStringLiteral("深色"));
        QCOMPARE(theme().themeTitle(QStringLiteral("light")), QStringLiteral("浅色"));
    }

    void everyColourAndImageOfAThemeCanBeHad()
    {
        for (const QString& name : ShippedThemes) {
            QVERIFY(theme().setTheme(name));
            support::UnexpectedLog log;
            for (const QString& key : theme().colourKeys()) {
                QVERIFY2(theme().colour(key).isValid(), qPrintable(key));
            }
            for (const QString& key : theme().imageKeys()) {
                QVERIFY2(!theme().image(key, 16).isNull(), qPrintable(key));
            }
            QCOMPARE(log.unexpected(), QStringList());
        }
    }

    void theKeysThatPanelsAskForExistInBothThemes()
    {
        for (const QString& name : ShippedThemes) {
            QVERIFY(theme().setTheme(name));
            for (const char* key : {"clr_table_background", "clr_table_background2", "cle_default",
                                    "clr_lineedit_empty_hint", "clr_global_rise"}) {
                QVERIFY2(theme().hasColour(QLatin1String(key)), key);
            }
            for (const char* key : {"qav_img_tab_page_top_1", "qav_img_tab_page_top", "qav_img_tab_page_top_i_1",
                                    "qav_img_tab_page_top_i"}) {
                QVERIFY2(theme().imageKeys().contains(QLatin1String(key)), key);
            }
        }
    }

    void textCanBeReadInBothThemes_data()
    {
        const support::DataRows<QString, QStringList> add("text", "grounds");
        const auto row = [&add](const char* text, const QStringList& grounds) {
            add(text, QString::fromLatin1(text), grounds);
        };
        const QStringList surfaces{QStringLiteral("clr_window"), QStringLiteral("clr_panel_background"),
                                   QStringLiteral("clr_table_background"), QStringLiteral("clr_table_background2")};
        row("cle_default",
            surfaces + QStringList{QStringLiteral("clr_table_hover_background"), QStringLiteral("clr_table_find_match"),
                                   QStringLiteral("clr_table_selection_inactive")});
        row("clr_text_weak", surfaces);
        row("clr_global_rise", surfaces);
        row("clr_global_fall", surfaces);
        row("clr_warning", surfaces);
        row("clr_link", surfaces);
        row("clr_selection_text", {QStringLiteral("clr_selection_background"), QStringLiteral("clr_accent")});
        row("clr_tip_text", {QStringLiteral("clr_tip_background")});
        row("clr_title_text", {QStringLiteral("clr_title_background")});
        row("clr_mask_text", {QStringLiteral("clr_mask_background")});
        row("clr_lineedit_text", {QStringLiteral("clr_lineedit_background")});
        row("clr_lineedit_empty_hint", {QStringLiteral("clr_lineedit_background")});
        row("clr_table_selection_text", {QStringLiteral("clr_table_selection_background")});
        row("clr_table_header_text",
            {QStringLiteral("clr_table_header_background"), QStringLiteral("clr_table_header_hover")});
        row("clr_table_empty_text", {QStringLiteral("clr_table_background")});
        for (const char* type : {"plain", "normal", "primary", "danger"}) {
            const QString start = QStringLiteral("clr_button_") + QLatin1String(type) + QLatin1Char('_');
            row(qPrintable(start + QStringLiteral("text")),
                {start + QStringLiteral("background"), start + QStringLiteral("hover"),
                 start + QStringLiteral("pressed")});
        }
    }
    void textCanBeReadInBothThemes()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, grounds);
        for (const QString& name : ShippedThemes) {
            QVERIFY(theme().setTheme(name));
            for (const QString& ground : grounds) {
                const QColor solid = over(theme().colour(ground), theme().colour(QStringLiteral("clr_window")));
                const double found = contrast(theme().colour(text), solid);
                QVERIFY2(found >= 4.5,
                         qPrintable(QStringLiteral("%1: %2 on %3: %4").arg(name, text, ground).arg(found)));
            }
        }
    }

    void whatCanBeFocusedAndCheckedStandsOutInBothThemes()
    {
        for (const QString& name : ShippedThemes) {
            QVERIFY(theme().setTheme(name));
            for (const char* ground : {"clr_window", "clr_panel_background", "clr_lineedit_background"}) {
                QVERIFY(contrast(theme().colour(WQ::key::FocusRing), theme().colour(QLatin1String(ground))) >= 3.0);
            }
        }
    }

    void aSwitchReachesEveryHandlerThePaletteAndTheSignal()
    {
        Watcher watcher;
        QSignalSpy changed(&theme(), &WQ::CUiResourceManager::sigThemeChanged);
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        const QString light = theme().colour(QStringLiteral("clr_window")).name();
        QCOMPARE(watcher.seen, QStringList{light});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed[0][0].toString(), QStringLiteral("light"));
        QCOMPARE(qApp->palette().color(QPalette::Window).name(), light);
        QCOMPARE(watcher.palette().color(QPalette::Window).name(), light);
        QVERIFY(theme().setTheme(QStringLiteral("dark")));
        QCOMPARE(watcher.seen.size(), 2);
        QVERIFY(watcher.seen[1] != light);
        QCOMPARE(qApp->palette().color(QPalette::Window).name(), watcher.seen[1]);
    }

    void aHandlerMayDestroyAnotherDuringTheSwitch()
    {
        Watcher first;
        Watcher second;
        first.victim = new Watcher;
        second.victim = new Watcher;
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        QVERIFY(!first.victim);
        QVERIFY(!second.victim);
        QCOMPARE(first.seen.size(), 1);
    }

    void anAddedImageTakesTheColoursOfTheTheme()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("own.svg"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'>"
                   "<rect width='16' height='16' fill='@clr_window@'/></svg>");
        file.close();
        theme().addImage("my_image", file.fileName());
        QVERIFY(theme().imageKeys().contains("my_image"));
        for (const QString& name : {QStringLiteral("light"), QStringLiteral("dark")}) {
            QVERIFY(theme().setTheme(name));
            QCOMPARE(theme().image("my_image").toImage().pixelColor(8, 8), theme().colour("clr_window"));
        }
        const QImage search = theme().image("img_search").toImage();
        theme().addImage("img_search", file.fileName()); // the theme has that
        QCOMPARE(theme().image("img_search").toImage(), search);
    }

    void imagesTakeTheColoursOfTheTheme()
    {
        const QImage dark = theme().image(QStringLiteral("img_close"), 16).toImage();
        QVERIFY(theme().setTheme(QStringLiteral("light")));
        const QImage light = theme().image(QStringLiteral("img_close"), 16).toImage();
        QCOMPARE(dark.size(), QSize(16, 16));
        QVERIFY(dark != light);
        QCOMPARE(theme().icon(QStringLiteral("img_close")).pixmap(16).toImage(), light);
    }

    void aMissingColourIsMagentaAndLoggedOnce()
    {
        support::UnexpectedLog log;
        QStringList lines;
        static QStringList* collected;
        collected = &lines;
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& line) { collected->append(line); });
        const QColor first = theme().colour(QStringLiteral("clr_no_such"));
        const QColor second = theme().colour(QStringLiteral("clr_no_such"));
        const QPixmap image = theme().image(QStringLiteral("img_no_such"), 16);
        theme().image(QStringLiteral("img_no_such"), 32);
        qInstallMessageHandler(before);
        QCOMPARE(first, QColor(255, 0, 255));
        QCOMPARE(second, QColor(255, 0, 255));
        QCOMPARE(image.toImage().pixelColor(8, 8), QColor(255, 0, 255));
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines[0].contains(QLatin1String("clr_no_such")));
        QVERIFY(lines[1].contains(QLatin1String("img_no_such")));
    }

    void aThemeFileTakesPrecedenceAndStandsOnItsBase()
    {
        QTemporaryDir folder;
        write(folder.filePath(QStringLiteral("dark.json")),
              "{\"title\": \"夜间\", \"base\": \"dark\", \"colours\": {\"clr_window\": \"#010203\", \"clr_mine\": "
              "\"clr_window\"}}");
        theme().setThemeDirectory(folder.path());
        QVERIFY(theme().setTheme(QStringLiteral("dark")));
        QCOMPARE(theme().colour(QStringLiteral("clr_window")), QColor(1, 2, 3));
        QCOMPARE(theme().colour(QStringLiteral("clr_mine")), QColor(1, 2, 3));
        QCOMPARE(theme().colour(QStringLiteral("clr_global_rise")), QColor(QStringLiteral("#ff5c57")));
        QCOMPARE(theme().themeTitle(QStringLiteral("dark")), QStringLiteral("夜间"));
    }

    void aBrokenThemeIsRefusedAndChangesNothing_data()
    {
        const support::DataRows<QByteArray> row("file");
        row("no JSON", "{ \"colours\": ");
        row("a list", "[1, 2]");
        row("no colour", "{\"base\": \"dark\", \"colours\": {\"clr_window\": \"bluish\"}}");
        row("a number", "{\"base\": \"dark\", \"colours\": {\"clr_window\": 5}}");
        row("a circle of keys", "{\"colours\": {\"clr_a\": \"clr_b\", \"clr_b\": \"clr_a\"}}");
        row("a base that is missing", "{\"base\": \"nowhere\"}");
        row("a circle of bases", "{\"base\": \"other\"}");
        row("empty", {});
    }
    void aBrokenThemeIsRefusedAndChangesNothing()
    {
        QFETCH(QByteArray, file);
        QTemporaryDir folder;
        write(folder.filePath(QStringLiteral("broken.json")), file);
        write(folder.filePath(QStringLiteral("other.json")), "{\"base\": \"broken\"}");
        theme().setThemeDirectory(folder.path());
        const QColor window = theme().colour(QStringLiteral("clr_window"));
        Watcher watcher;
        support::UnexpectedLog log;
        log.expect(QStringLiteral("broken"));
        QVERIFY(!theme().setTheme(QStringLiteral("broken")));
        QCOMPARE(theme().theme(), QStringLiteral("dark"));
        QCOMPARE(theme().colour(QStringLiteral("clr_window")), window);
        QCOMPARE(watcher.seen, QStringList());
    }

    void aThemesNameIsNoPath()
    {
        support::UnexpectedLog log;
        log.expect(QStringLiteral("no such theme"));
        for (const char* name : {"", "../dark", "nowhere", "..\\dark"}) {
            QVERIFY(!theme().setTheme(QLatin1String(name)));
        }
    }

    void theFontIsChineseAndCompact()
    {
        QCOMPARE(theme().font().families().value(0), QStringLiteral("Noto Sans CJK SC"));
        QCOMPARE(qApp->font().pixelSize(), theme().font().pixelSize());
        QVERIFY(theme().font().pixelSize() >= 12 && theme().font().pixelSize() <= 13);
    }
};

TEST_WITH_WIDGETS(ThemeTest)
#include "tst_themes.moc"
