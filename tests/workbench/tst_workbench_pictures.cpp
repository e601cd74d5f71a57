// SPDX-License-Identifier: Apache-2.0
#include "support/wq/WatchedTest.h"

#include "support/Paths.h"
#include "support/TestProgram.h"
#include "workbench/CMissingFontNotice.h"

#include <QtWidgets/QtWidgets>

using workbench::CMissingFontNotice;

/// Fonts and pictures of the client.
class PicturesTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void withAChineseFontNothingIsSaid() { QVERIFY(!CMissingFontNotice::isNeeded()); }

    void withoutAChineseFontTheClientSaysSo()
    {
        QTemporaryDir folder;
        QFile fonts(folder.filePath("fonts.conf"));
        QVERIFY(fonts.open(QIODevice::WriteOnly));
        fonts.write("<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir></fontconfig>");
        fonts.close();
        QProcess client;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("FONTCONFIG_FILE", fonts.fileName());
        client.setProcessEnvironment(environment);
        client.setProcessChannelMode(QProcess::MergedChannels);
        client.start(support::builtFile("bin/qav-workbench"),
                     {"--database", folder.filePath("a.db"), "--groups", "1", "--accounts", "12", "--config",
                      folder.filePath("c.ini"), "--user", "admin", "--password-from-stdin"});
        client.write("wrong\n");
        client.closeWriteChannel();
        QVERIFY(client.waitForFinished());
        const QByteArray said = client.readAll();
        QVERIFY2(said.contains("No font has Chinese characters"), said);
    }

    void windowsHaveTheIconOfTheClient()
    {
        Q_INIT_RESOURCE(client);
        QVERIFY(!QIcon(QStringLiteral(":/qav-workbench.svg")).pixmap(32).isNull());
    }

    void theNoticeIsAPictureThatAnyKeyOrClickCloses()
    {
        Q_INIT_RESOURCE(client);
        CMissingFontNotice notice;
        notice.show();
        const QImage picture = notice.grab().toImage();
        QCOMPARE(picture.size(), QSize(540, 220));
        int written = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                written += qGray(picture.pixel(x, y)) < 64;
            }
        }
        QVERIFY(written > 2000 && written < 20000);
        QTest::keyClick(&notice, Qt::Key_A);
        QVERIFY(!notice.isVisible());
        notice.show();
        QTest::mouseClick(&notice, Qt::LeftButton);
        QVERIFY(!notice.isVisible());
    }
};

TEST_WITH_WIDGETS(PicturesTest)
#include "tst_workbench_pictures.moc"
