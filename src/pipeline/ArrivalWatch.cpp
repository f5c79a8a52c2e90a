#include "pipeline/ArrivalWatch.h"

#include "pipeline/Engine.h"

ArrivalWatch::ArrivalWatch(Engine& engine)
    : engine_(engine)
{
}

void ArrivalWatch::folderChanged()
{
    due_ = true;
    retriesLeft_ = kUnfinishedRetries;
}

std::optional<int> ArrivalWatch::look()
{
    due_ = false;
    ++looks_;
    switch (engine_.lookOnArrival()) {
    case Engine::ArrivalLook::Busy:
        // Owed until the engine is free again.
        due_ = true;
        return std::nullopt;
    case Engine::ArrivalLook::Printed:
        return 0;
    case Engine::ArrivalLook::Waiting:
        if (retriesLeft_ <= 0)
            return std::nullopt;
        --retriesLeft_;
        return kUnfinishedRetryMs;
    case Engine::ArrivalLook::NotNow:
    case Engine::ArrivalLook::Nothing:
    case Engine::ArrivalLook::Kept:
        break;
    }
    return std::nullopt;
}

QString ArrivalWatch::folder() const
{
    return engine_.printFolder();
}
