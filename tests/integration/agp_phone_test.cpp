// agp-phone run as a process: arguments and files checked, pushes taken, stopped by SIGTERM.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <regex>

#include "ApplicationServer.h"

extern char** environ;

namespace {

// A running agp-phone with its standard output and error collected.
class PhoneProcess {
public:
    explicit PhoneProcess(std::vector<std::string> arguments) {
        int pipeFds[2];
        EXPECT_EQ(pipe(pipeFds), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 2);
        posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
        arguments.insert(arguments.begin(), AGP_PHONE_PATH);
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(&argument[0]);
        }
        argv.push_back(nullptr);
        EXPECT_EQ(posix_spawn(&mPid, AGP_PHONE_PATH, &actions, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(pipeFds[1]);
        mReader = std::thread([this, fd = pipeFds[0]] {
            char buffer[4096];
            ssize_t got;
            while ((got = read(fd, buffer, sizeof buffer)) > 0) {
                std::lock_guard<std::mutex> lock(mMutex);
                mOutput.append(buffer, static_cast<size_t>(got));
            }
            close(fd);
        });
    }
    ~PhoneProcess() {
        if (mPid > 0) {
            kill(mPid, SIGKILL);
            wait();
        }
    }

    int wait() {
        int status = 0;
        waitpid(mPid, &status, 0);
        mPid = 0;
        if (mReader.joinable()) {
            mReader.join();
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int stop() {
        kill(mPid, SIGTERM);
        return wait();
    }
    std::string output() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mOutput;
    }
    // Waits for a line of output matching `pattern` and returns its first group.
    std::string waitForOutput(const std::string& pattern) {
        const std::regex expression(pattern);
        for (int i = 0; i < 500; ++i) {
            std::smatch match;
            const std::string text = output();
            if (std::regex_search(text, match, expression)) {
                return match.size() > 1 ? match[1].str() : match[0].str();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return "";
    }

private:
    pid_t mPid = 0;
    std::thread mReader;
    std::mutex mMutex;
    std::string mOutput;
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
