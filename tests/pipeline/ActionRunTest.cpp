#include "ActionFixture.h"
#include "pipeline/ActionRun.h"

class ActionRunTest : public ActionTest {
protected:
    std::unique_ptr<ActionRun> run;
    int endedWith = -1;

    void runAction(const QString& name, const ParamFormValues& params)
    {
        writeParams(params);
        build(QString(), false);
        buildActions();
        QObject::connect(engine.get(), &Engine::ended, [this](int code) { endedWith = code; });
        run = std::make_unique<ActionRun>(*engine, *actions, name);
        run->start();
    }
};

TEST_F(ActionRunTest, TheActionRunsOnceTheRegisterAnswersAndThenTheProgramEnds)
{
    auto params = pollingParams();
    params.ChkAuto = true; // a life of one action never starts polling
    runAction(u"xrep0"_s, params);
    settle();
    EXPECT_TRUE(ran.isEmpty());
    printer->initializeStatuses = {-4, 0};
    engine->timer2Tick();
    engine->timer2Tick();
    EXPECT_EQ(engine->state(), EngineState::Ready);
    EXPECT_TRUE(ran.isEmpty()); // not inside the search's tick
    settle();
    EXPECT_EQ(ran, QStringList{"xrep0"});
    EXPECT_EQ(endedWith, ActionRun::kExitRan);
    EXPECT_FALSE(link.connected);
}

TEST_F(ActionRunTest, ARegisterNeverFoundEndsTheRunWithoutTheAction)
{
    runAction(u"Ver"_s, pollingParams());
    printer->statusAfterScript = -4;
    for (int i = 0; i < DeviceSearch::kSearchesBeforeOffLine + 1; ++i)
        engine->timer2Tick();
    settle();
    EXPECT_EQ(endedWith, ActionRun::kExitRegisterNotFound);
    EXPECT_TRUE(ran.isEmpty());

    // A link that never opens ends it from the start.
    link.openStatus = -1;
    endedWith = -1;
    runAction(u"Ver"_s, pollingParams());
    settle();
    EXPECT_EQ(endedWith, ActionRun::kExitRegisterNotFound);
}

TEST_F(ActionRunTest, ANameThatRunsNothingIsToldWithoutTroublingTheRegister)
{
    runAction(u"initTables"_s, pollingParams());
    settle();
    EXPECT_EQ(endedWith, ActionRun::kExitNotBuilt);
    EXPECT_EQ(person.messages.last().text, u"Η λειτουργία Αρχικοποίηση Τραπεζιών δεν είναι ακόμη διαθέσιμη."_s);
    EXPECT_EQ(link.opens, 0);

    endedWith = -1;
    runAction(u"xreports"_s, pollingParams());
    settle();
    EXPECT_EQ(endedWith, ActionRun::kExitUnknownAction);
    EXPECT_EQ(link.opens, 0);
}
