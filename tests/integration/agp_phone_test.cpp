// agp-phone run as a process: arguments and files checked, pushes taken, stopped by SIGTERM.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>

#include "ApplicationServer.h"
#include "ChildProcess.h"

namespace {

// A running agp-phone with its standard output and error collected.
class PhoneProcess : public ChildProcess {
public:
    explicit PhoneProcess(const std::vector<std::string>& arguments, bool withInput = false)
        : ChildProcess(AGP_PHONE_PATH, arguments, withInput) {
        EXPECT_TRUE(started());
    }
};

// Reads a server-sent event stream on its own thread until stopped.
class EventReader {
public:
    EventReader(int port, const std::string& lastEventId = "") : mClient("127.0.0.1", port) {
        mClient.set_read_timeout(30);
        httplib::Headers headers;
        if (!lastEventId.empty()) {
            headers.emplace("Last-Event-ID", lastEventId);
        }
        mThread = std::thread([this, headers] {
            mClient.Get("/api/events", headers, [this](const char* data, size_t length) {
                std::lock_guard<std::mutex> lock(mMutex);
                mText.append(data, length);
                return true;
            });
        });
    }
    ~EventReader() {
        mClient.stop();
        mThread.join();
    }
    std::string text() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mText;
    }
    bool waitFor(const std::string& piece) {
        for (int i = 0; i < 500 && text().find(piece) == std::string::npos; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return text().find(piece) != std::string::npos;
    }
    // The value of the last "id:" line seen.
    std::string lastId() {
        const std::string all = text();
        const size_t at = all.rfind("\nid: ");
        return at == std::string::npos ? "" : all.substr(at + 5, all.find('\n', at + 1) - at - 5);
    }

private:
    httplib::Client mClient;
    std::thread mThread;
    std::mutex mMutex;
    std::string mText;
};

// The indented lines under `heading` in one of the documents in docs/, as they stand.
std::vector<std::string> documentedExample(const std::string& document, const std::string& heading) {
    std::ifstream in(std::string(AGP_DOCS_DIR) + "/" + document);
    std::vector<std::string> lines;
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("#", 0) == 0) {
            inside = line == heading;
        } else if (inside && line.rfind("    ", 0) == 0) {
            lines.push_back(line.substr(4));
        }
    }
    return lines;
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// Runs a shell command line; its exit status, and its standard output in `output`.
int runShell(const std::string& command, std::string& output) {
    output.clear();
    FILE* pipe = popen(command.c_str(), "r");
    char buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        output.append(buffer, got);
    }
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Polls `condition` for up to ten seconds.
template <typename Condition> bool eventually(Condition condition) {
    for (int i = 0; i < 1000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

// Text kept as Latin-1 by the journal, back to the bytes it stands for.
std::string utf8ToLatin1(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        bytes += byte < 0x80 ? static_cast<char>(byte)
                             : static_cast<char>(((byte & 0x03) << 6) | (text[++i] & 0x3F));
    }
    return bytes;
}

long nowMs() {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count());
}

int runToEnd(const std::vector<std::string>& arguments, std::string& output) {
    PhoneProcess phone(arguments);
    const int status = phone.wait();
    output = phone.output();
    return status;
}

} // namespace

TEST(AgpPhone, SaysWhatIsWrongWithArgumentsAndFiles) {
    std::string output;
    const std::string config = ::testing::TempDir() + "/agp-phone-bad.conf";
    std::ofstream(config) << "app-name-1=x\nbogus-key=1\nphone.model=round\nno equals sign\n";
    EXPECT_EQ(runToEnd({"--config", config}, output), 2);
    EXPECT_NE(output.find(config + ":2: unknown key 'bogus-key'"), std::string::npos) << output;
    EXPECT_NE(output.find(config + ":3: bad value 'round' for phone.model"), std::string::npos) << output;
    EXPECT_NE(output.find(config + ":4: "), std::string::npos) << output;

    const std::string phonebook = ::testing::TempDir() + "/agp-phone-book.csv";
    std::ofstream(phonebook) << "number,first name,surname,type\n0301234,Xaver,Young,mobile\n"
                                "12ab,No,Number,private\n0309,Some,One,fax\n";
    std::ofstream(config) << "app-name-1=x\nphone.phonebook=" << phonebook << "\n";
    EXPECT_EQ(runToEnd({"--config", config, "--url", "http://127.0.0.1:9/"}, output), 2);
    EXPECT_NE(output.find(phonebook + ":3: '12ab' is not a phone number"), std::string::npos) << output;
    EXPECT_NE(output.find(phonebook + ":4: type must be private, business, business2 or mobile (or 1 to 4), "
                                      "not 'fax'"),
              std::string::npos)
        << output;

    EXPECT_EQ(runToEnd({"--config", "/nonexistent/phone.conf"}, output), 2);
    EXPECT_NE(output.find("/nonexistent/phone.conf"), std::string::npos) << output;
    EXPECT_EQ(runToEnd({"--url", "ftp://server/app"}, output), 2);
    EXPECT_NE(output.find("must be http or https"), std::string::npos) << output;
    EXPECT_EQ(runToEnd({"--url", "no scheme"}, output), 2);
    EXPECT_EQ(runToEnd({"--url", "http://127.0.0.1:9/", "--push", "nowhere"}, output), 2);
    EXPECT_EQ(runToEnd({"--render", "png"}, output), 2);
    EXPECT_EQ(runToEnd({"--url", "http://127.0.0.1:9/", "--plugin", "/nonexistent/lib.so"}, output), 1);
    EXPECT_NE(output.find("cannot load the phonelet plug-in /nonexistent/lib.so"), std::string::npos)
        << output;
    EXPECT_EQ(runToEnd({"--url", "http://127.0.0.1:9/", "--plugin", AGP_PLATFORM_PATH}, output), 1);
    EXPECT_NE(output.find("has no createPhonelet entry"), std::string::npos) << output;
}

TEST(AgpPhone, RunsTheApplicationTakesPushesAndStopsOnSigterm) {
    ApplicationServer server;
    server.setDocument(""); // an empty reply shows nothing, so pushes stay welcome
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/app/start", "--app",
                        "Phone-" + std::to_string(getpid()), "--push", "127.0.0.1:0", "--http", "127.0.0.1:0",
                        "--render", "text"});
    const std::string pushPort = phone.waitForOutput("pushes to http://127.0.0.1:([0-9]+)/push");
    ASSERT_FALSE(pushPort.empty()) << phone.output();
    ASSERT_TRUE(server.waitForRequests(1));
    EXPECT_EQ(server.requests()[0], "/app/start?devicetype=Veltria&ipaddress=127.0.0.1&phonenumber=100");
    EXPECT_NE(phone.waitForOutput("Starting application\\.\\.\\."), "")
        << "the text view shows the start screen";

    httplib::Client client("127.0.0.1", std::stoi(pushPort));
    auto pushed = client.Post("/push", "ServerAddr=127.0.0.1&ProgramName=news&Type=active",
                              "application/x-www-form-urlencoded");
    ASSERT_TRUE(pushed);
    EXPECT_EQ(pushed->status, 200);
    ASSERT_TRUE(server.waitForRequests(2));
    EXPECT_EQ(server.requests()[1], "/news");
    auto badType =
        client.Post("/push", "ServerAddr=127.0.0.1&Type=loud", "application/x-www-form-urlencoded");
    EXPECT_EQ(badType->status, 400);
    EXPECT_NE(badType->body.find("bad Type 'loud'"), std::string::npos);
    auto noServer = client.Post("/push", "ProgramName=x", "application/x-www-form-urlencoded");
    EXPECT_EQ(noServer->status, 400);
    auto huge = client.Post("/push", std::string(100 * 1024, 'x'), "application/x-www-form-urlencoded");
    ASSERT_TRUE(huge);
    EXPECT_EQ(huge->status, 413);

    // A second phone cannot take ports that are in use, and says which.
    const std::string url = "http://127.0.0.1:" + std::to_string(server.port()) + "/app/start";
    std::string output;
    EXPECT_EQ(runToEnd({"--url", url, "--push", "127.0.0.1:" + pushPort, "--http", "off"}, output), 1);
    EXPECT_NE(output.find("cannot listen for pushes on 127.0.0.1:" + pushPort), std::string::npos) << output;
    const std::string taken = std::to_string(server.port());
    EXPECT_EQ(runToEnd({"--url", url, "--push", "off", "--http", "127.0.0.1:" + taken}, output), 1);
    EXPECT_NE(output.find("--http: cannot listen on 127.0.0.1:" + taken), std::string::npos) << output;

    EXPECT_EQ(phone.stop(), 0) << phone.output();
}

TEST(AgpPhone, ControlApiDrivesThePhoneAndQuits) {
    ApplicationServer server;
    server.setDocument(""); // an empty reply shows nothing, so pushes stay welcome
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Api-" + std::to_string(getpid()), "--push", "off", "--http", "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    ASSERT_TRUE(server.waitForRequests(1));
    httplib::Client api("127.0.0.1", std::stoi(port));

    auto screen = api.Get("/api/screen");
    ASSERT_TRUE(screen);
    EXPECT_NE(screen->body.find("Starting application..."), std::string::npos) << screen->body;
    auto text = api.Get("/api/screen/text");
    EXPECT_NE(text->body.find("Starting application..."), std::string::npos);
    auto keys = api.Post("/api/keys", R"({"keys": ["Down", "Ok"]})", "application/json");
    EXPECT_EQ(keys->status, 200) << keys->body;
    EXPECT_EQ(api.Post("/api/keys", R"({"keys": ["Jump"]})", "application/json")->status, 400);
    EXPECT_EQ(api.Post("/api/keys", R"({"keys": )", "application/json")->status, 400);
    EXPECT_EQ(api.Post("/api/keys", R"({"keys": [], "speed": 2})", "application/json")->status, 400);

    auto requests = api.Get("/api/requests");
    EXPECT_NE(requests->body.find("/start?ipaddress=127.0.0.1"), std::string::npos) << requests->body;
    auto log = api.Get("/api/log?module=AGPPhonelet&level=5");
    EXPECT_NE(log->body.find("AGPPhonelet started"), std::string::npos) << log->body;
    EXPECT_EQ(
        api.Post("/api/config", R"({"values": {"ipaddress": "127.0.0.2"}})", "application/json")->status,
        200);
    for (int i = 0;
         i < 200 &&
         api.Get("/api/log?module=AGPServerConnection")->body.find("Local IP Address has been changed") ==
             std::string::npos;
         ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_NE(api.Get("/api/log?module=AGPServerConnection")->body.find("Local IP Address has been changed"),
              std::string::npos)
        << "the configuration change reached the application";
    EXPECT_EQ(api.Post("/api/config", R"({"values": {"colour": "red"}})", "application/json")->status, 400);
    EventReader events(std::stoi(port));
    ASSERT_TRUE(events.waitFor("event: screen")) << events.text();
    EXPECT_TRUE(events.waitFor("/start?ipaddress=127.0.0.1")) << "the requests so far come on connect";
    EXPECT_EQ(api.Post("/api/application", R"({"action": "hide"})", "application/json")->status, 200);
    EXPECT_TRUE(events.waitFor("\"shown\":false")) << "the hidden screen and state come by themselves";
    auto state = api.Get("/api/state");
    EXPECT_NE(state->body.find("\"shown\":false"), std::string::npos) << state->body;
    EXPECT_EQ(api.Post("/api/push", R"({"data": "ServerAddr=127.0.0.1&ProgramName=p", "type": "queue"})",
                       "application/json")
                  ->status,
              200);
    ASSERT_TRUE(server.waitForRequests(2));
    EXPECT_EQ(server.requests()[1], "/p");
    EXPECT_TRUE(events.waitFor("\"via\":\"control API\"")) << events.text();
    EXPECT_TRUE(events.waitFor("ProgramName=p")) << events.text();
    EXPECT_TRUE(events.waitFor("\"url\":\"http://127.0.0.1:" + std::to_string(server.port()) + "/p\""));

    // A page that reconnects with the last id it saw gets the screen again but no old request.
    EventReader resumed(std::stoi(port), events.lastId());
    ASSERT_TRUE(resumed.waitFor("event: state")) << resumed.text();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(resumed.text().find("event: requests"), std::string::npos) << resumed.text();
    EventReader afterRestart(std::stoi(port), "999999");
    EXPECT_TRUE(afterRestart.waitFor("event: requests")) << "an id from an earlier run starts from scratch";

    EXPECT_EQ(api.Post("/api/quit", "", "application/json")->status, 200);
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}

TEST(AgpPhone, DateFormatsComeFromTheConfigurationAndChangeLive) {
    ApplicationServer server;
    server.setDocument("<IppDisplay><IppScreen ID=\"1\"><IppForm ItemCount=\"1\"><IppDateField "
                       "Default=\"MODE\" DateKey=\"d\">"
                       "<Label>When</Label><Date>2009-03-07</Date><Time>14:05</Time></IppDateField></IppForm>"
                       "</IppScreen></IppDisplay>");
    const std::string config = ::testing::TempDir() + "/agp-phone-formats.conf";
    std::ofstream(config) << "phone.date-format=MM/DD/YYYY\nphone.time-format=12HR\n";
    PhoneProcess phone({"--config", config, "--url",
                        "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Formats-" + std::to_string(getpid()), "--push", "off", "--http", "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    const auto screenShows = [&api](const std::string& text) {
        for (int i = 0; i < 500; ++i) {
            if (api.Get("/api/screen/text")->body.find(text) != std::string::npos) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    };
    EXPECT_TRUE(screenShows("When: 03/07/2009 02:05 pm")) << api.Get("/api/screen/text")->body;
    auto changed = api.Post("/api/formats", R"({"date": "DD.MM.YYYY", "time": "24HR"})", "application/json");
    EXPECT_EQ(changed->body, R"({"date":"DD.MM.YYYY","time":"24HR"})");
    EXPECT_TRUE(screenShows("When: 07.03.2009 14:05")) << api.Get("/api/screen/text")->body;
    EXPECT_NE(api.Get("/api/state")->body.find(R"("timeFormat":"24HR")"), std::string::npos);
    EXPECT_EQ(api.Post("/api/formats", R"({"time": "25HR"})", "application/json")->status, 400);
    EXPECT_EQ(api.Post("/api/formats", R"({"date": 3})", "application/json")->status, 400);
    EXPECT_EQ(api.Post("/api/quit", "", "application/json")->status, 200);
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}

TEST(AgpPhone, ScenarioScriptsPassFailAndReportMistakes) {
    ApplicationServer server;
    server.setDocument(""); // an empty reply shows nothing, so pushes stay welcome
    const std::string directory = ::testing::TempDir();
    const std::string passing = directory + "/agp-passing.agp";
    std::ofstream script(passing);
    for (const std::string& line : documentedExample("scenarios.md", "## Example")) {
        script << line << "\n";
    }
    script.close();
    const std::vector<std::string> phone = {
        "--url",      "http://127.0.0.1:" + std::to_string(server.port()) + "/app/start",
        "--app",      "Script-" + std::to_string(getpid()),
        "--headless", "--push",
        "off",        "--http",
        "off",        "--script"};
    std::vector<std::string> arguments = phone;
    arguments.push_back(passing);
    std::string output;
    EXPECT_EQ(runToEnd(arguments, output), 0) << output;

    const std::string failing = directory + "/agp-failing.agp";
    std::ofstream(failing)
        << "timeout 1\nexpect text \"Starting application...\"\nwait text Weather forecast\n";
    arguments.back() = failing;
    EXPECT_EQ(runToEnd(arguments, output), 1);
    EXPECT_NE(output.find(failing + ":3: wait text \"Weather forecast\" failed"), std::string::npos)
        << output;
    EXPECT_NE(output.find("Starting application..."), std::string::npos) << "the report shows what was seen";

    const std::string broken = directory + "/agp-broken.agp";
    std::ofstream(broken) << "press down jump\nwibble\nexpect title\n";
    arguments.back() = broken;
    EXPECT_EQ(runToEnd(arguments, output), 2);
    EXPECT_NE(output.find(broken + ":1: unknown key 'jump'"), std::string::npos) << output;
    EXPECT_NE(output.find(broken + ":2: unknown command 'wibble'"), std::string::npos) << output;
    EXPECT_NE(output.find(broken + ":3: 'expect title' needs a text"), std::string::npos) << output;
}

TEST(AgpPhone, TheDemoRunsOnItsEmbeddedServer) {
    const std::string script = ::testing::TempDir() + "/agp-demo.agp";
    std::ofstream(script) << "wait text \"AGP demo\"\n"
                             "press ok\n"
                             "wait text Colours\n"
                             "press ok softkey1\n"
                             "wait text \"The server received\"\n"
                             "expect text \"blue = not_yes\"\n"
                             "expect text \"red = yes\"\n"
                             "press softkey1\n"
                             "wait text Yellow\n"
                             "press back\n"
                             "wait text \"Write a note\"\n"
                             "press down ok\n"
                             "wait text \"PIN again\"\n"
                             "press down ok\n"
                             "type Ann\n"
                             "press ok down down ok\n"
                             "type 12\n"
                             "press ok down ok\n"
                             "type 12\n"
                             "press ok up up up up ok\n"
                             "wait text \"The server received\"\n"
                             "expect text \"name = Ann\"\n"
                             "expect text \"pin = 12\"\n"
                             "expect text \"session = demo-42\"\n"
                             "press back\n"
                             "wait text \"PIN again\"\n"
                             "press back\n"
                             "wait text \"Write a note\"\n"
                             "press down ok\n"
                             "wait text \"Type here\"\n";
    std::string output;
    EXPECT_EQ(runToEnd({"--demo", "--app", "Demo-" + std::to_string(getpid()), "--headless", "--push", "off",
                        "--http", "off", "--script", script},
                       output),
              0)
        << output;
}

// The demo's lunch order and voice message, as a user walks them in the terminal.
TEST(AgpPhone, TheDemoLunchOrderAndVoiceMessageWork) {
    const std::string lunch = ::testing::TempDir() + "/agp-lunch.agp";
    std::ofstream(lunch)
        << "wait text \"AGP demo\"\n"
           "press down down down down down ok\n"
           "wait text \"Lunch order\"\n"
           "expect text \"~ Lunch is served from 12:00 to 14:00 ~\"\n"
           "expect text \"Main: ( ) Soup  (*) Pasta  ( ) Salad\"\n"
           "press down down down down\n"
           "wait text \">( ) Salad\"\n"
           "press ok down\n"
           "wait text \"Extras: >[x] Bread  [ ] Cake\"\n"
           "press down ok\n"
           "wait text \"Extras: [x] Bread  >[x] Cake\"\n"
           "press down ok down ok\n"
           "wait text \"Drink: < Juice >\"\n"
           "press down right right\n"
           "wait text \"Portions: 3 (0..5)\"\n"
           "expect text \"Kitchen: \"\n"
           "press down down ok\n"
           "wait request order=same-as-yesterday\n"
           "wait text \"order = same-as-yesterday\"\n"
           "expect no text \"main =\"\n"
           "press back\n"
           "wait text \"Lunch order\"\n"
           "wait text \"[Order]\"\n"
           "press softkey1\n"
           "wait request main=salad\n"
           "expect request drink=juice&extra=bread&extra=cake&form=lunch&main=salad&portions=3\n";
    const std::string voice = ::testing::TempDir() + "/agp-voice.agp";
    std::ofstream(voice) << "wait text \"AGP demo\"\n"
                            "press down down down down down down ok\n"
                            "wait text \"player: playing, call mode\"\n"
                            "wait text \"] 2/30\"\n"
                            "press ok\n"
                            "wait request action=pause&position=\n"
                            "wait text \"action = pause\"\n";
    for (const std::string& script : {lunch, voice}) {
        std::string output;
        EXPECT_EQ(runToEnd({"--demo", "--app", "Lunch-" + std::to_string(getpid()), "--headless", "--push",
                            "off", "--http", "off", "--script", script},
                           output),
                  0)
            << output;
    }
}

TEST(AgpPhone, EveryControlApiExampleRunsAsDocumented) {
    ApplicationServer server;
    server.setDocument(""); // an empty reply shows nothing, so pushes stay welcome
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Docs-" + std::to_string(getpid()), "--push", "127.0.0.1:0", "--http",
                        "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    const std::string pushPort = phone.waitForOutput("pushes to http://127.0.0.1:([0-9]+)/push");
    ASSERT_FALSE(port.empty() || pushPort.empty()) << phone.output();
    ASSERT_TRUE(server.waitForRequests(1));

    const std::vector<std::string> examples = documentedExample("control-api.md", "## Examples");
    ASSERT_GE(examples.size(), 14u);
    for (const std::string& example : examples) {
        const std::string command = replaceAll(replaceAll(example, "127.0.0.1:8080", "127.0.0.1:" + port),
                                               "127.0.0.1:8085", "127.0.0.1:" + pushPort);
        std::string output;
        const int status = runShell(command, output);
        const bool streamed = example.find("--max-time") != std::string::npos;
        EXPECT_EQ(status, streamed ? 28 : 0) << example << "\n" << output;
        EXPECT_FALSE(output.empty()) << example;
        EXPECT_NE(output.rfind("{\"error\"", 0), 0u) << example << "\n" << output;
        if (streamed) {
            EXPECT_NE(output.find("event: screen"), std::string::npos) << output;
        }
        if (example.find("/api/pushes") != std::string::npos) {
            EXPECT_NE(output.find("\"via\":\"push endpoint\""), std::string::npos) << output;
        }
    }
    EXPECT_EQ(phone.wait(), 0) << "the last example quits\n" << phone.output();
    EXPECT_TRUE(server.waitForRequests(3));
    const std::vector<std::string> requests = server.requests();
    EXPECT_NE(std::find(requests.begin(), requests.end(), "/news"), requests.end());
}

TEST(AgpPhone, JournalCarriesBytesThatAreNotUtf8AndTextCanBeReplaced) {
    ApplicationServer server;
    const std::string document =
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
        "<IppDisplay InitialScreen=\"1\"><IppScreen ID=\"1\">"
        "<IppTextBox MaxSize=\"20\" Default=\"TEXT\" Key=\"city\"><Title>Stadt</Title>"
        "<Text>K\xF6ln</Text><Url>http://127.0.0.1:" +
        std::to_string(server.port()) + "/go</Url></IppTextBox></IppScreen></IppDisplay>";
    server.setDocument(document);
    const long startedMs = nowMs();
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Latin-" + std::to_string(getpid()), "--push", "127.0.0.1:0", "--http",
                        "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    const std::string pushPort = phone.waitForOutput("pushes to http://127.0.0.1:([0-9]+)/push");
    ASSERT_FALSE(port.empty() || pushPort.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    ASSERT_TRUE(eventually([&] {
        return api.Get("/api/screen/text")->body.find("K\u00f6ln") != std::string::npos;
    })) << api.Get("/api/screen/text")->body;

    // The document's bytes come back exactly, and the other journals keep answering.
    auto requests = api.Get("/api/requests");
    ASSERT_EQ(requests->status, 200) << requests->body;
    const auto entry = nlohmann::json::parse(requests->body).at(0);
    EXPECT_EQ(entry.value("bodyEncoding", ""), "latin1") << entry.dump();
    EXPECT_EQ(utf8ToLatin1(entry["body"].get<std::string>()), document);
    EXPECT_GE(entry["timeMs"].get<long>(), startedMs - 1000);
    EXPECT_LE(entry["timeMs"].get<long>(), nowMs() + 1000);
    EXPECT_GE(entry["durationMs"].get<long>(), 0);
    EXPECT_EQ(api.Get("/api/log")->status, 200);
    httplib::Client pushes("127.0.0.1", std::stoi(pushPort));
    pushes.Post("/push", "ServerAddr=127.0.0.1&ProgramName=caf\xE9", "application/x-www-form-urlencoded");
    auto pushed = api.Get("/api/pushes");
    ASSERT_EQ(pushed->status, 200) << pushed->body;
    const auto push = nlohmann::json::parse(pushed->body).at(0);
    EXPECT_EQ(push.value("dataEncoding", ""), "latin1") << push.dump();
    EXPECT_EQ(utf8ToLatin1(push["data"].get<std::string>()), "ServerAddr=127.0.0.1&ProgramName=caf\xE9");
    EXPECT_GT(push["timeMs"].get<long>(), 0);

    // Typing appends; with "replace" the field is emptied first. The display draws the text on
    // its own thread, after the request is answered.
    EXPECT_EQ(api.Post("/api/text", R"({"text": "er"})", "application/json")->status, 200);
    EXPECT_TRUE(eventually([&] {
        return api.Get("/api/screen/text")->body.find("K\u00f6lner") != std::string::npos;
    })) << api.Get("/api/screen/text")->body;
    auto replaced = api.Post("/api/text", R"({"text": "Bonn", "replace": true})", "application/json");
    EXPECT_EQ(replaced->body, R"({"handled":true})");
    EXPECT_TRUE(eventually([&] {
        return api.Get("/api/screen/text")->body.find("Bonn") != std::string::npos;
    })) << api.Get("/api/screen/text")->body;
    const std::string screen = api.Get("/api/screen/text")->body;
    EXPECT_EQ(screen.find("K\u00f6ln"), std::string::npos) << screen;
    EXPECT_EQ(api.Post("/api/text", R"({"text": "x", "replace": "yes"})", "application/json")->status, 400);
    EXPECT_EQ(phone.stop(), 0) << phone.output();
}

TEST(AgpPhone, KeysArePipedInAsWellAsTyped) {
    PhoneProcess phone(
        {"--demo", "--app", "Piped-" + std::to_string(getpid()), "--push", "off", "--http", "off"}, true);
    ASSERT_NE(phone.waitForOutput("AGP demo"), "") << phone.output();
    ASSERT_TRUE(phone.typeLine("ok"));
    EXPECT_NE(phone.waitForOutput("Colours"), "") << phone.output();
    ASSERT_TRUE(phone.typeLine("jump"));
    EXPECT_NE(phone.waitForOutput("unknown key 'jump'"), "") << phone.output();
    ASSERT_TRUE(phone.typeLine("quit"));
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}

TEST(AgpPhone, TabCountsAreCheckedOrDefaulted) {
    const std::string config = ::testing::TempDir() + "/agp-phone-tabs.conf";
    std::string output;
    for (const char* bad : {"", "two", "4"}) {
        std::ofstream(config) << "app-name-1=x\nnum-tabs-1=" << bad << "\n";
        EXPECT_EQ(runToEnd({"--config", config}, output), 2) << bad;
        EXPECT_NE(output.find(config + ":2: bad value '" + bad + "' for num-tabs-1"), std::string::npos)
            << output;
    }

    ApplicationServer server;
    std::ofstream(config) << "phone.application=Tabs-" << getpid() << "\napp-name-1=Tabs-" << getpid()
                          << "\nserver-addr-1=127.0.0.1\nserver-port-1=" << server.port()
                          << "\ntransport-1=http\nprogram-name-1=app/start\n";
    PhoneProcess phone({"--config", config, "--push", "off", "--http", "off", "--render", "text"});
    EXPECT_NE(
        phone.waitForOutput(config + ":2: app-name-1 has no num-tabs-1; using 0 \\(one screen, no tabs\\)"),
        "")
        << phone.output();
    EXPECT_TRUE(server.waitForRequests(1)) << "the default of one screen requests the start-up URL";
    EXPECT_EQ(phone.stop(), 0) << phone.output();
}

TEST(AgpPhone, IdleAnswersOnceThePhoneHasSettled) {
    ApplicationServer server;
    const std::string base = "http://127.0.0.1:" + std::to_string(server.port());
    server.setDocument(
        "/start", "<IppDisplay><IppScreen ID=\"1\"><IppList Count=\"1\"><Title>Menu</Title><Url>" + base +
                      "/next</Url><Option Key=\"go\" Value=\"1\"><OptionText>Onwards</OptionText>"
                      "</Option></IppList></IppScreen></IppDisplay>");
    server.setDocument("/next", "<IppDisplay><IppScreen ID=\"2\"><IppTextBox><Title>Arrived</Title>"
                                "<Text>at the next page</Text></IppTextBox></IppScreen></IppDisplay>");
    PhoneProcess phone({"--url", base + "/start", "--app", "Idle-" + std::to_string(getpid()), "--push",
                        "off", "--http", "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    api.set_read_timeout(30);
    auto idle = api.Get("/api/idle?timeout=20000");
    ASSERT_EQ(idle->status, 200) << idle->body;
    EXPECT_NE(api.Get("/api/screen/text")->body.find("Onwards"), std::string::npos) << "settled on the menu";

    // The documented example: a key, the settled signal, then the screen the key led to.
    const std::vector<std::string> example =
        documentedExample("control-api.md", "## Waiting until the phone has settled");
    ASSERT_EQ(example.size(), 3u);
    std::string output;
    for (const std::string& line : example) {
        EXPECT_EQ(runShell(replaceAll(line, "127.0.0.1:8080", "127.0.0.1:" + port), output), 0) << line;
    }
    EXPECT_NE(output.find("Arrived"), std::string::npos) << output;
    EXPECT_EQ(server.requests().back(), "/next?go=1");

    // A request that hangs keeps the phone busy until the time given runs out.
    EXPECT_EQ(api.Post("/api/push", R"({"data": "ServerAddr=127.0.0.1&ProgramName=slow", "type": "queue"})",
                       "application/json")
                  ->status,
              200);
    idle = api.Get("/api/idle?timeout=300");
    EXPECT_EQ(idle->status, 504) << idle->body;
    EXPECT_NE(idle->body.find("\"busy\":\"a "), std::string::npos) << idle->body;
    EXPECT_EQ(phone.stop(), 0) << phone.output();

    const std::string script = ::testing::TempDir() + "/agp-idle.agp";
    std::ofstream(script)
        << "wait idle\nexpect text Onwards\npush queue ServerAddr=127.0.0.1&ProgramName=slow\n"
           "timeout 1\nwait idle\n";
    EXPECT_EQ(runToEnd({"--url", base + "/start", "--app", "IdleScript-" + std::to_string(getpid()),
                        "--headless", "--push", "off", "--http", "off", "--script", script},
                       output),
              1);
    EXPECT_NE(output.find(script + ":5: wait idle failed"), std::string::npos) << output;
    EXPECT_NE(output.find("still busy"), std::string::npos) << output;
}

namespace {

// A TCP connection to the phone's port from a chosen loopback address, for what httplib's client
// cannot do: stay silent, or send from another address.
int connectFrom(const std::string& source, int port) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    inet_pton(AF_INET, source.c_str(), &address.sin_addr);
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    address.sin_port = htons(static_cast<uint16_t>(port));
    inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
    EXPECT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    return fd;
}

// The status line of the answer to `request`, sent raw on `fd`.
std::string rawStatusLine(int fd, const std::string& request) {
    EXPECT_EQ(send(fd, request.data(), request.size(), MSG_NOSIGNAL), static_cast<ssize_t>(request.size()));
    std::string answer;
    char buffer[1024];
    ssize_t got;
    while (answer.find("\r\n") == std::string::npos && (got = recv(fd, buffer, sizeof buffer, 0)) > 0) {
        answer.append(buffer, static_cast<size_t>(got));
    }
    return answer.substr(0, answer.find("\r\n"));
}

// A push form of exactly `size` bytes, padded in a field the phonelet does not read.
std::string pushOfSize(size_t size) {
    std::string form = "ServerAddr=127.0.0.1&ProgramName=big&Pad=";
    return form + std::string(size - form.size(), 'p');
}

} // namespace

TEST(AgpPhone, TheControlApiObeysOnlyItsUser) {
    ApplicationServer server;
    server.setDocument("");
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Guard-" + std::to_string(getpid()), "--push", "off", "--http", "127.0.0.1:0",
                        "--http-name", "phone.test"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    api.set_read_timeout(20);
    const std::string keys = R"({"keys": ["down"]})";

    // Host: the listener's own address, localhost and the configured name; nothing else.
    for (const std::string& host :
         std::vector<std::string>{"127.0.0.1:" + port, "localhost:" + port, "Phone.Test:" + port}) {
        EXPECT_EQ(api.Get("/api/state", {{"Host", host}})->status, 200) << host;
    }
    for (const std::string& host : std::vector<std::string>{"attacker.example:" + port, "127.0.0.1:1",
                                                            "localhost", "10.0.0.1:" + port}) {
        auto refused = api.Get("/api/state", {{"Host", host}});
        EXPECT_EQ(refused->status, 403) << host;
        EXPECT_NE(refused->body.find("is not this listener's address"), std::string::npos) << refused->body;
    }
    // Origin and Content-Type on calls that change something.
    EXPECT_EQ(
        api.Post("/api/keys", {{"Origin", "http://127.0.0.1:" + port}}, keys, "application/json")->status,
        200);
    for (const char* origin : {"http://attacker.example", "null", "http://127.0.0.1:1"}) {
        EXPECT_EQ(api.Post("/api/keys", {{"Origin", origin}}, keys, "application/json")->status, 403)
            << origin;
    }
    EXPECT_EQ(api.Post("/api/keys", keys, "application/json; charset=utf-8")->status, 200);
    for (const char* type : {"text/plain", "application/x-www-form-urlencoded", "application/jsonp"}) {
        auto refused = api.Post("/api/keys", keys, type);
        EXPECT_EQ(refused->status, 415) << type;
    }
    // Members of the wrong kind are the caller's mistake, said in the body.
    for (const auto& call : std::vector<std::pair<std::string, std::string>>{
             {"/api/application", R"({"action": 5})"},
             {"/api/push", R"({"data": 5, "type": "queue"})"},
             {"/api/push", R"({"data": "ServerAddr=127.0.0.1", "type": ["queue"]})"},
             {"/api/push", R"({"data": "ServerAddr=127.0.0.1", "application": null})"},
             {"/api/calls", R"({"action": 88.888})"},
             {"/api/calls", R"({"action": "ring", "number": 301234})"},
             {"/api/calls", R"({"action": "answer", "call": 1})"}}) {
        auto answer = api.Post(call.first, call.second, "application/json");
        EXPECT_EQ(answer->status, 400) << call.second;
        EXPECT_NE(answer->body.find("must be a string"), std::string::npos) << answer->body;
        EXPECT_FALSE(answer->has_header("EXCEPTION_WHAT"));
    }
    EXPECT_EQ(
        api.Post("/api/push", R"({"data": "ServerAddr=10.9.9.9&ProgramName=p"})", "application/json")->status,
        409);

    // Event streams take at most 8 workers, and silent connections give theirs back: the calls
    // still get through.
    std::vector<std::unique_ptr<EventReader>> streams;
    for (int i = 0; i < 8; ++i) {
        streams.push_back(std::make_unique<EventReader>(std::stoi(port)));
        ASSERT_TRUE(streams.back()->waitFor("event: screen")) << i;
    }
    auto ninth = api.Get("/api/events");
    ASSERT_TRUE(ninth);
    EXPECT_EQ(ninth->status, 503);
    std::vector<int> idle;
    for (int i = 0; i < 60; ++i) {
        idle.push_back(connectFrom("127.0.0.1", std::stoi(port)));
    }
    auto state = api.Get("/api/state");
    ASSERT_TRUE(state);
    EXPECT_EQ(state->status, 200);
    streams.clear();
    for (int fd : idle) {
        close(fd);
    }
    EXPECT_EQ(phone.stop(), 0) << phone.output();
}

TEST(AgpPhone, ThePushListenerBoundsBodiesAndSaysWhyAPushIsDropped) {
    ApplicationServer server;
    server.setDocument("");
    const std::string app = "Drop-" + std::to_string(getpid());
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app", app,
                        "--push", "0.0.0.0:0", "--http", "off"});
    const std::string pushPort = phone.waitForOutput("pushes to http://0.0.0.0:([0-9]+)/push");
    ASSERT_FALSE(pushPort.empty()) << phone.output();
    ASSERT_TRUE(server.waitForRequests(1));
    httplib::Client client("127.0.0.1", std::stoi(pushPort));
    const char* form = "application/x-www-form-urlencoded";

    // 64 KB, form-encoded or not, announced or in chunks: the limit is exactly 65536 bytes.
    EXPECT_EQ(client.Post("/push", pushOfSize(65536), form)->status, 200);
    EXPECT_EQ(client.Post("/push", pushOfSize(65537), form)->status, 413);
    EXPECT_EQ(client.Post("/push", pushOfSize(9000), "text/plain")->status, 200);
    auto chunked = [&](size_t size) {
        const std::string body = pushOfSize(size);
        return client
            .Post(
                "/push",
                [body](size_t offset, httplib::DataSink& sink) {
                    sink.write(body.data() + offset, std::min<size_t>(4096, body.size() - offset));
                    if (offset + 4096 >= body.size()) {
                        sink.done();
                    }
                    return true;
                },
                form)
            ->status;
    };
    EXPECT_EQ(chunked(65536), 200);
    EXPECT_EQ(chunked(65537), 413);

    // A push the phonelet would drop in silence is refused, saying why.
    auto otherServer = client.Post("/push", "ServerAddr=10.9.9.9&ProgramName=p", form);
    EXPECT_EQ(otherServer->status, 403);
    EXPECT_NE(otherServer->body.find("ServerAddr 10.9.9.9 is not the server of " + app + " (127.0.0.1)"),
              std::string::npos)
        << otherServer->body;
    auto unknown = client.Post("/push", "ServerAddr=127.0.0.1&Application=Nobody", form);
    EXPECT_EQ(unknown->status, 404);
    EXPECT_NE(unknown->body.find("no application named 'Nobody'"), std::string::npos) << unknown->body;
    // A foreign page's form is refused before it is read.
    EXPECT_EQ(
        client.Post("/push", {{"Origin", "http://attacker.example"}}, "ServerAddr=127.0.0.1", form)->status,
        403);

    // Beyond loopback the sender must be the server the push names.
    const std::string push = "POST /push HTTP/1.1\r\nHost: 127.0.0.1:" + pushPort +
                             "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: 30\r\n"
                             "Connection: close\r\n\r\nServerAddr=127.0.0.1&Type=4&P=";
    const int stranger = connectFrom("127.0.0.2", std::stoi(pushPort));
    EXPECT_EQ(rawStatusLine(stranger, push), "HTTP/1.1 403 Forbidden");
    close(stranger);
    const int itself = connectFrom("127.0.0.1", std::stoi(pushPort));
    EXPECT_EQ(rawStatusLine(itself, push), "HTTP/1.1 200 OK");
    close(itself);
    EXPECT_EQ(phone.stop(), 0) << phone.output();
}

TEST(AgpPhone, BeyondLoopbackTheControlApiNeedsItsToken) {
    std::string output;
    EXPECT_EQ(runToEnd({"--url", "http://127.0.0.1:9/", "--push", "off", "--http", "0.0.0.0:0"}, output), 2);
    EXPECT_NE(output.find("--http: listening beyond loopback (0.0.0.0) lets others drive the phone; give "
                          "--http-token TOKEN as well"),
              std::string::npos)
        << output;

    ApplicationServer server;
    server.setDocument("");
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Token-" + std::to_string(getpid()), "--push", "off", "--http", "0.0.0.0:0",
                        "--http-token", "s3cret"});
    const std::string port = phone.waitForOutput("control API at http://0.0.0.0:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    EXPECT_EQ(api.Get("/api/state")->status, 401);
    EXPECT_EQ(api.Get("/api/state", {{"Authorization", "Bearer wrong"}})->status, 401);
    EXPECT_EQ(api.Get("/api/state", {{"Authorization", "Bearer s3cret"}})->status, 200);
    auto opened = api.Get("/api/state?token=s3cret");
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->status, 200);
    EXPECT_EQ(opened->get_header_value("Set-Cookie"), "agp-token=s3cret; Path=/; HttpOnly; SameSite=Strict");
    EXPECT_EQ(api.Get("/api/state", {{"Cookie", "a=b; agp-token=s3cret"}})->status, 200);
    EXPECT_EQ(api.Post("/api/quit", {{"Cookie", "agp-token=s3cret"}}, "{}", "application/json")->status, 200);
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}

// The journal keeps the normal trace; the detailed trace of every element parsed is kept only
// once somebody asks for it, and a bad level is refused.
TEST(AgpPhone, LogKeepsTheDetailThatIsAskedFor) {
    ApplicationServer server;
    server.setDocument("<IppDisplay><IppScreen ID=\"1\"><IppTextBox><Title>Hi</Title><Text>t</Text>"
                       "</IppTextBox></IppScreen></IppDisplay>");
    PhoneProcess phone({"--url", "http://127.0.0.1:" + std::to_string(server.port()) + "/start", "--app",
                        "Level-" + std::to_string(getpid()), "--push", "off", "--http", "127.0.0.1:0"});
    const std::string port = phone.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
    ASSERT_FALSE(port.empty()) << phone.output();
    httplib::Client api("127.0.0.1", std::stoi(port));
    for (int i = 0; i < 500 && api.Get("/api/screen/text")->body.find("Hi") == std::string::npos; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_NE(api.Get("/api/screen/text")->body.find("Hi"), std::string::npos) << phone.output();
    EXPECT_EQ(api.Get("/api/log/level")->body, R"({"level":5})");
    EXPECT_EQ(api.Get("/api/log?level=6")->body.find("\"level\":6"), std::string::npos)
        << "no detailed trace kept while nobody asks for it";

    for (const char* bad : {R"({"level": 7})", R"({"level": "6"})", R"({"level": -1})", R"({})"}) {
        EXPECT_EQ(api.Post("/api/log/level", bad, "application/json")->status, 400) << bad;
    }
    EXPECT_EQ(api.Post("/api/log/level", R"({"level": 6})", "application/json")->body, R"({"level":6})");
    EXPECT_EQ(api.Post("/api/push", R"({"data": "ServerAddr=127.0.0.1&ProgramName=again", "type": "queue"})",
                       "application/json")
                  ->status,
              200);
    ASSERT_TRUE(server.waitForRequests(2));
    std::string detailed;
    for (int i = 0; i < 500 && detailed.find("\"level\":6") == std::string::npos; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        detailed = api.Get("/api/log?level=6&module=AGPXMLParser")->body;
    }
    EXPECT_NE(detailed.find("\"level\":6"), std::string::npos) << "the next document's elements are traced";
    EXPECT_EQ(api.Post("/api/quit", "", "application/json")->status, 200);
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}
