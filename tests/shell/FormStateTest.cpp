#include "shell/FormModel.h"
#include "shell/ProgressIndicator.h"

#include "PrintQString.h"

#include <QThread>
#include <atomic>
#include <future>
#include <gtest/gtest.h>

TEST(FormModel, EveryChangeGoesOutWholeOnceAndNoChangeNotAtAll)
{
    FormModel form;
    QList<FormState> sent;
    QStringList statusLines;
    QObject::connect(&form, &FormModel::stateChanged, [&](const FormState& s) { sent << s; });
    QObject::connect(&form, &FormModel::statusLineChanged, [&](const QString& s) { statusLines << s; });

    form.setCaption(QStringLiteral("Kerbano- Έτοιμο"));
    form.update([](FormState& s) {
        s.comstattxt = QStringLiteral("Αναμονη Για Στοιχεια....");
        s.command1Enabled = false;
        s.menus.reports.enabled = false;
    });
    form.setCaption(QStringLiteral("Kerbano- Έτοιμο"));
    form.setMenuEnabled(&MenuStates::reports, false);
    form.setMenuChecked(&MenuStates::pStop, true);

    // The whole form each time, not the change.
    FormState ready;
    ready.caption = QStringLiteral("Kerbano- Έτοιμο");
    FormState waiting = ready;
    waiting.comstattxt = QStringLiteral("Αναμονη Για Στοιχεια....");
    waiting.command1Enabled = waiting.menus.reports.enabled = false;
    FormState stopped = waiting;
    stopped.menus.pStop.checked = true;
    EXPECT_EQ(sent, (QList<FormState>{ready, waiting, stopped}));
    EXPECT_EQ(ready.label2, QStringLiteral("..."));
    EXPECT_EQ(sent.last(), form.state());
    EXPECT_EQ(statusLines, QStringList{"Αναμονη Για Στοιχεια...."});
}

TEST(FormModel, TheStateCrossesToAnotherThreadAsACopy)
{
    FormModel form;
    QThread gui;
    QObject mirror;
    mirror.moveToThread(&gui);
    gui.start();

    std::promise<std::pair<FormState, bool>> received;
    std::atomic<bool> first{true};
    QObject::connect(
        &form, &FormModel::stateChanged, &mirror,
        [&](const FormState& s) {
            if (first.exchange(false))
                received.set_value({s, QThread::currentThread() == &gui});
        },
        Qt::QueuedConnection);
    form.update([](FormState& s) {
        s.caption = QStringLiteral("Εκτύπωση Ενεργή ");
        s.lblProgr = QStringLiteral(" Ολοκληρώθηκε το 50%");
        s.menus.mZREp.enabled = false;
    });
    form.setCaption(QStringLiteral("changed after sending")); // the copy in flight stays as sent

    std::future<std::pair<FormState, bool>> arrival = received.get_future();
    const bool arrived = arrival.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
    gui.quit();
    gui.wait();
    ASSERT_TRUE(arrived);
    const auto [state, onGuiThread] = arrival.get();
    EXPECT_TRUE(onGuiThread);
    EXPECT_EQ(state.caption, QStringLiteral("Εκτύπωση Ενεργή "));
    EXPECT_EQ(state.lblProgr, QStringLiteral(" Ολοκληρώθηκε το 50%"));
    EXPECT_FALSE(state.menus.mZREp.enabled);
}

TEST(ProgressIndicator, ShowsRoundedPercentageAndDashBelowOne)
{
    FormModel form;
    clsind progress(form);
    progress.setMax(3);
    progress.setValue(0);
    EXPECT_EQ(form.lblProgr(), QStringLiteral("-"));
    progress.setValue(2);
    EXPECT_EQ(form.lblProgr(), QStringLiteral(" Ολοκληρώθηκε το 67%"));
    progress.setValue(3);
    EXPECT_EQ(form.lblProgr(), QStringLiteral(" Ολοκληρώθηκε το 100%"));
}
