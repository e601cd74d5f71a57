// SPDX-License-Identifier: Apache-2.0
#include "RiskCourse.h"
#include "support/TestProgram.h"

#include <algorithm>

using namespace risk_test;

/// Whatever comes when, the risk settings show, cover, tell and send what belongs to the group that is open.
class RiskCoursesTest : public QObject
{
    Q_OBJECT

    /// Courses that one dialog takes.
    static constexpr unsigned CoursesOfADialog = 100;
    /// Courses of one call of the test function, whose time is limited.
    static constexpr unsigned CoursesOfACall = 1000;
    static constexpr int DefaultCourses = 10000;
    static constexpr int DefaultSeed = 1;

private slots:
    void whateverComesWhenTheDialogDoesAsTheModelSays_data()
    {
        const support::DataRows<unsigned, unsigned> row("first", "courses");
        const auto first = unsigned(support::setting("QAV_RISK_SEED", DefaultSeed));
        const auto courses = unsigned(support::setting("QAV_RISK_COURSES", DefaultCourses));
        for (unsigned played = 0; played < courses; played += CoursesOfACall) {
            row(QString("from seed %1").arg(first + played), first + played,
                std::min(CoursesOfACall, courses - played));
        }
    }
    void whateverComesWhenTheDialogDoesAsTheModelSays()
    {
        QFETCH(unsigned, first);
        QFETCH(unsigned, courses);
        int saves = 0;
        for (unsigned played = 0; played < courses;) {
            const unsigned seedOfDialog = first + played;
            RiskFixture client({"mdl_tradetype_future", "mdl_tradetype_stock"});
            client.boxes.reset();
            client.dialog().hide();
            RiskCourse course(client);
            for (unsigned i = 0; i < CoursesOfADialog && played < courses; ++i, ++played) {
                const QString difference = course.play(first + played);
                QVERIFY2(difference.isEmpty(),
                         qPrintable(QString("course %1; again from the dialog's first one with QAV_RISK_SEED=%2\n%3")
                                        .arg(first + played)
                                        .arg(seedOfDialog)
                                        .arg(difference)));
            }
            saves += course.saves();
        }
        QVERIFY(saves >= int(courses / 10));
    }
};

TEST_WITH_WIDGETS(RiskCoursesTest)
#include "tst_risk_courses.moc"
