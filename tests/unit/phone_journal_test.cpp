// The emulator's journal: what it keeps of requests and log lines, and what that costs.
#include <gtest/gtest.h>

#include "PhoneJournal.h"
#include "logging/Log.h"

namespace {

HttpTransferRecord requestWithBody(size_t bytes, char fill) {
    HttpTransferRecord record;
    record.method = "GET";
    record.requestedUrl = record.finalUrl = "http://127.0.0.1/doc";
    record.success = true;
    record.httpStatus = 200;
    record.body.assign(bytes, fill);
    record.bodySize = bytes;
    return record;
}

} // namespace

// Twenty documents of 1 MB: the newest keep their bodies within the bound, the oldest give
// theirs up but stay listed, and the bound holds as entries leave the list.
TEST(PhoneJournal, KeepsRequestBodiesWithinTheirBound) {
    PhoneJournal journal(2);
    for (int i = 0; i < 20; ++i) {
        journal.transferFinished(requestWithBody(1u << 20, static_cast<char>('a' + i)));
    }
    const nlohmann::json requests = journal.requests(0);
    ASSERT_EQ(requests.size(), 20u);
    size_t kept = 0;
    for (const auto& request : requests) {
        kept += request["body"].get<std::string>().size();
    }
    EXPECT_LE(kept, PhoneJournal::kMaxRequestBodyBytes);
    EXPECT_GE(kept, PhoneJournal::kMaxRequestBodyBytes - (1u << 20));
    EXPECT_TRUE(requests.front().value("bodyDropped", false));
    EXPECT_EQ(requests.front()["bodySize"], 1u << 20) << "the size received is still told";
    EXPECT_EQ(requests.back()["body"].get<std::string>(), std::string(1u << 20, 't'));
    EXPECT_FALSE(requests.back().contains("bodyDropped"));
}

// Lines above the journal's level are neither kept nor formatted for it; raising the level takes
// effect for the next line.
TEST(PhoneJournal, KeepsLogLinesUpToItsLevel) {
    PhoneJournal journal(5);
    EXPECT_TRUE(loggingOnAppUni("AGPJournalTest", 5));
    logAppUni("AGPJournalTest", "./test", 5, 1, "normal %d", 1);
    logAppUni("AGPJournalTest", "./test", 6, 2, "detail %d", 2);
    journal.setLogLevel(6);
    EXPECT_TRUE(loggingOnAppUni("AGPJournalTest", 6));
    logAppUni("AGPJournalTest", "./test", 6, 3, "detail %d", 3);
    const nlohmann::json lines = journal.logLines(0, "AGPJournalTest", 6);
    ASSERT_EQ(lines.size(), 2u) << lines.dump();
    EXPECT_EQ(lines[0]["text"], "normal 1");
    EXPECT_EQ(lines[1]["text"], "detail 3");
    EXPECT_EQ(lines[1]["level"], 6);
    EXPECT_FALSE(lines[1]["thread"].get<std::string>().empty());
    EXPECT_EQ(lines[1]["time"].get<std::string>().size(), 23u) << "YYYY-MM-DD HH:MM:SS.mmm";
    journal.setLogLevel(2);
    EXPECT_FALSE(loggingOnAppUni("AGPJournalTest", 5)) << "nobody wants trace lines any more";
}
