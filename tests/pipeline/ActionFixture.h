#pragma once

#include "EngineFixture.h"
#include "pipeline/ActionRegistry.h"
#include "pipeline/EngineActivity.h"

#include <QCoreApplication>

// The engine's activity as the menu actions see it; the conversation is set by hand.
struct EngineTestActivity final : EngineActivity {
    const Engine* engine = nullptr;
    bool conversation = false;
    bool jobInProgress() const override { return engine && engine->busy(); }
    bool inConversation() const override { return conversation; }
};

// An engine with the menu actions beside it, wired as the driver wires them:
// the engine becoming free runs what waits.
class ActionTest : public EngineTest {
protected:
    EngineTestActivity activity;
    std::unique_ptr<ActionRegistry> actions;
    QStringList ran;
    QList<QPair<QString, ActionRegistry::Outcome>> finished;

    void buildActions()
    {
        activity.engine = engine.get();
        actions = std::make_unique<ActionRegistry>(form, person, engine->moduleVariables(), activity);
        QObject::connect(engine.get(), &Engine::freed, actions.get(), &ActionRegistry::runWaiting,
                         Qt::QueuedConnection);
        QObject::connect(actions.get(), &ActionRegistry::finished,
                         [this](const QString& name, ActionRegistry::Outcome outcome) {
                             finished.append({name, outcome});
                         });
        for (const char* name : {"Ver", "xrep0", "end"})
            actions->setHandler(QString::fromLatin1(name), [this, name] { ran << QString::fromLatin1(name); });
    }

    // Lets the queued steps (the engine freed, an end out of a tick) run.
    static void settle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }
};
