#include "EngineFixture.h"

TEST_F(EngineTest, StartOpensTheLinkReadsVatRatesAndSearches)
{
    int vatReads = 0;
    parts.readDeviceVatRates_ = [&] { ++vatReads; };
    writeParams(pollingParams());
    start();
    EXPECT_EQ(glance(), u"Kerbano- Αναζήτηση|Εύρεση Φορολογικής Ταμειακής !!! |---++"_s);
    EXPECT_EQ(link.opens, 1);
    EXPECT_EQ(vatReads, 1);
    EXPECT_EQ(engine->timer2().intervalMs, 1000);
    EXPECT_EQ(form.state().filetxt, u"print @Path : in\\"_s);
    EXPECT_EQ(form.state().desctxt, u"Να Εκτυπωνεται"_s);
    EXPECT_EQ(engine->DeviceType(), 1);
}

TEST_F(EngineTest, FailedLinkAtStartLeavesEveryTimerOffAndTheMenusClosed)
{
    link.openStatus = -1;
    link.openReply = u"Πρόβλημα στην Θύρα :com9"_s;
    writeParams(pollingParams());
    start();
    EXPECT_EQ(glance(), u"Kerbano- Αναζήτηση|Λάθος : -1 - Πρόβλημα στην Θύρα :com9|-----"_s);
    EXPECT_EQ(engine->timer2().intervalMs, 1000);
    const std::pair<const char*, FormModel::Entry> closed[] = {
        {"help", &MenuStates::help},     {"Ver", &MenuStates::Ver},     {"reports", &MenuStates::reports},
        {"mZREp", &MenuStates::mZREp},   {"pStart", &MenuStates::pStart}, {"pStop", &MenuStates::pStop},
        {"paramEFT", &MenuStates::paramEFT}};
    for (const auto& [name, entry] : closed)
        EXPECT_FALSE((form.state().menus.*entry).enabled) << name;
}

TEST_F(EngineTest, ThreeFailedSearchesLeaveTheDeviceOffLineForGood)
{
    writeParams(pollingParams());
    start();
    printer->initializeStatuses = {-4, -4, -4, 0};
    for (int i = 0; i < 3; ++i)
        engine->timer2Tick();
    EXPECT_EQ(engine->searchFailures(), 3);
    EXPECT_EQ(form.comstattxt(), u"Εύρεση Φορολογικής Ταμειακής !!! "_s);
    engine->timer2Tick();
    engine->timer2Tick();
    EXPECT_EQ(glance(), u"Kerbano- Λάθος!|Φορολογικός Εκτυπωτής Off-Line, Εκτυπώσεις Ανενεργές !|---++"_s);
    EXPECT_EQ(printer->ops.size(), 3); // no more questions to the register
}

TEST_F(EngineTest, DeviceAnsweringMakesTheProgramReadyAndAutoStartPolls)
{
    auto params = pollingParams();
    params.ChkAuto = true;
    writeParams(params);
    link.tcp = false;
    start();
    link.connected = false; // closed meanwhile: the search opens it again
    printer->initializeStatuses = {-4, 0};
    engine->timer2Tick();
    EXPECT_EQ(engine->searchFailures(), 1);
    EXPECT_TRUE(form.state().formShown);
    engine->timer2Tick();
    EXPECT_EQ(link.opens, 2);
    EXPECT_TRUE(form.state().baudShown);
    EXPECT_FALSE(form.state().menus.reports.enabled); // AutoStart went on to polling
    EXPECT_EQ(glance(), u"Kerbano- Αναμονη|Αναμονη Για Στοιχεια....|-++-+"_s);
    EXPECT_FALSE(form.state().formShown);
}

TEST_F(EngineTest, ButtonsAlternatePollingAndStoppedWithTheirCheckMarks)
{
    writeParams(pollingParams());
    start();
    engine->mTimerTick();
    EXPECT_FALSE(form.state().menus.pStart.checked || form.state().menus.pStop.checked);

    engine->timer2Tick();
    EXPECT_EQ(glance(), u"Kerbano- Έτοιμο|Φορολογικός Εκτυπωτής ON-Line, Έτοιμος Για Εκτυπωσεις|+---+"_s);
    EXPECT_TRUE(form.state().menus.reports.enabled);

    engine->command1();
    EXPECT_TRUE(glance().endsWith(u"|-++-+"_s)) << qPrintable(glance());
    EXPECT_EQ(engine->timer1().intervalMs, 3000);
    EXPECT_FALSE(form.state().menus.Settings.enabled);
    engine->mTimerTick();
    EXPECT_TRUE(form.state().menus.pStart.checked);
    EXPECT_FALSE(form.state().menus.pStop.checked);

    engine->command2();
    EXPECT_EQ(glance(), u"Kerbano- Διακοπηκε|Διακοπη Εκτυπωσεων. Πατηστε Εναρξη Εκτυπωσεων!!! |+---+"_s);
    EXPECT_TRUE(form.state().menus.reports.enabled && form.state().menus.Settings.enabled);
    engine->mTimerTick();
    EXPECT_FALSE(form.state().menus.pStart.checked);
    EXPECT_TRUE(form.state().menus.pStop.checked);
}

TEST_F(EngineTest, TheTrayTipFollowsTheCaptionAtEachUpkeepCutToSixtyThreeCharacters)
{
    writeParams(pollingParams());
    start();
    engine->timer2Tick();
    EXPECT_TRUE(form.trayTip().isEmpty()); // only the upkeep moves it
    engine->mTimerTick();
    EXPECT_EQ(form.trayTip(), u"Kerbano- Έτοιμο"_s);

    form.setCaption(QString(70, QLatin1Char('K')));
    engine->mTimerTick();
    EXPECT_EQ(form.trayTip(), QString(63, QLatin1Char('K')));
}
