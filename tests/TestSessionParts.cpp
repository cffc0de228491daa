// What a session is made of, each without the others.
#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "session/Callbacks.h"
#include "session/Dialogue.h"
#include "session/ServiceStatus.h"
#include "session/SessionThread.h"

using namespace std::chrono_literals;

namespace {

std::function<void(int)> theHook; // called inside either callback

int onCall(int code, void *data)
{
    theHook(data ? static_cast<MOVA_STKNotifyData *>(data)->enStkType : code);
    return 0;
}

} // namespace

TEST(TestCallbacks, holdBackUntilTheAnswerHasReturned)
{
    Callbacks callbacks;
    std::optional<Callbacks::Answering> call;
    const auto begin = [&](int = 0) { call.emplace(callbacks); };
    const auto takes = [](auto function) {
        const auto start = std::chrono::steady_clock::now();
        function();
        return std::chrono::steady_clock::now() - start;
    };
    const auto hold = [&] { callbacks.holdBack(); };
    begin();
    EXPECT_LT(takes(hold), 150ms); // from nobody
    theHook = begin;
    EXPECT_EQ(callbacks.add(Callbacks::Command, onCall), StatusSuccess);
    const auto longest = takes(hold);
    EXPECT_TRUE(longest >= 200ms && longest < 5s);
    call.reset();
    EXPECT_GE(takes(hold), 150ms); // this thread runs whenever it is looked at
    std::async(std::launch::async, [&] { begin(), call.reset(); }).wait();
    const auto held = takes(hold);
    EXPECT_TRUE(held >= 10ms && held < 150ms);
    callbacks.callCommand({}, true);
    EXPECT_LT(takes(hold), 150ms); // answered inside
    call.reset();
    begin();
    for (const bool isGone : {false, true}) {
        auto soon = std::async(std::launch::async, [&] {
            std::this_thread::sleep_for(5ms);
            isGone ? callbacks.removeAll() : callbacks.hurry();
        });
        EXPECT_LT(takes(hold), 150ms);
    }
    call.reset();

    std::string told;
    theHook = [&](int what) { told += std::to_string(what) + ' '; };
    callbacks.setListener([&](int type) { told += "(" + std::to_string(type) + ") "; });
    callbacks.add(Callbacks::Device, onCall);
    callbacks.callCommand({MOVA_STKTYPE_END_SESSION, 1, 0}, false); // to nobody
    callbacks.add(Callbacks::Command, onCall);
    callbacks.callCommand({MOVA_STKTYPE_GET_INKEY, 2, 0}, true);
    callbacks.callCommand({MOVA_STKTYPE_END_SESSION, 3, 0}, false);
    EXPECT_LT(takes([&] { callbacks.callDevice(MOVA_DEV_EVENT_DEVICE_READY); }), 150ms);
    EXPECT_GE(takes([&] { callbacks.callDevice(MOVA_DEV_EVENT_DEVICE_REMOVED); }), 150ms);
    EXPECT_EQ(told, "(2) 2 99 6602 6601 ");
}

TEST(TestSessionThread, looksAgainBeforeItWaits)
{
    std::promise<void> own, goOn;
    SessionThread *self = nullptr;
    int posts = 3; // more than there are rings
    SessionThread thread([&] {
        if (self && posts-- > 0)
            self->post([&] { posts ? void() : own.set_value(); });
        return std::optional(SessionThread::Pause{Alarm::Time::max()});
    });
    thread.post([&] { self = &thread; });
    EXPECT_EQ(own.get_future().wait_for(10s), std::future_status::ready);

    std::string done;
    thread.post([&] { goOn.get_future().wait(); });
    thread.post([&] { done += "requested"; });
    thread.discard(std::shared_ptr<void>(nullptr, [&](void *) { done += "destroyed, "; }));
    EXPECT_FALSE(thread.stop(1ms));
    goOn.set_value();
    EXPECT_TRUE(thread.stop(10s));
    EXPECT_EQ(done, "destroyed, requested");
}

TEST(TestDialogue, knowsWhatIsNews)
{
    Transcript transcript;
    Dialogue dialogue(transcript);
    const Card::Time now = Card::Time() + 1h;
    const std::tuple<CommandBody, std::chrono::milliseconds, Card::Time> rows[] = {
        {SetUpMenu(), 5s, now},
        {Refresh(), 5s, now + 2s},
        {DisplayText(), 5s, now + 5s},
        {DisplayText(), 0s, Card::Time::max()}};
    for (const auto &[body, responseTime, deadline] : rows) {
        ProactiveCommand command{body};
        command.responseTime = responseTime;
        const auto word = dialogue.begin(command, 2s, now);
        EXPECT_EQ(dialogue.deadline(), deadline) << commandName(body);
        EXPECT_EQ(dialogue.isUnderWay(), !std::holds_alternative<SetUpMenu>(body));
        EXPECT_TRUE(dialogue.isNews(word));
    }
    const auto text = dialogue.begin({DisplayText()}, 2s, now);
    EXPECT_EQ(dialogue.leave()->result, TerminalResponse::Result::Terminated);
    EXPECT_FALSE(dialogue.isNews(text)); // the user has gone on
    const auto end = dialogue.end();
    dialogue.choose({});
    EXPECT_FALSE(dialogue.isNews(end)); // of the session before
    EXPECT_FALSE(dialogue.endByCard());
    EXPECT_FALSE(dialogue.deliverChoice());
    EXPECT_TRUE(dialogue.endByCard());
    EXPECT_FALSE(dialogue.endByCard()); // told once

    for (int i = 0; i < 40000; ++i)
        ASSERT_GT(dialogue.end().id, 0);
}
