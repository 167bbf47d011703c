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
    EXPECT_EQ(api.Post("/api/config", R"({"values": {"language": "de"}})", "application/json")->status, 200);
    EXPECT_EQ(api.Post("/api/config", R"({"values": {"colour": "red"}})", "application/json")->status, 400);
    EXPECT_EQ(api.Post("/api/application", R"({"action": "hide"})", "application/json")->status, 200);
    auto state = api.Get("/api/state");
    EXPECT_NE(state->body.find("\"shown\":false"), std::string::npos) << state->body;
    EXPECT_EQ(api.Post("/api/push", R"({"data": "ServerAddr=127.0.0.1&ProgramName=p", "type": "queue"})",
                       "application/json")
                  ->status,
              200);
    ASSERT_TRUE(server.waitForRequests(2));
    EXPECT_EQ(server.requests()[1], "/p");

    EXPECT_EQ(api.Post("/api/quit", "", "application/json")->status, 200);
    EXPECT_EQ(phone.wait(), 0) << phone.output();
}

TEST(AgpPhone, ScenarioScriptsPassFailAndReportMistakes) {
    ApplicationServer server;
    server.setDocument(""); // an empty reply shows nothing, so pushes stay welcome
    const std::string directory = ::testing::TempDir();
    const std::string passing = directory + "/agp-passing.agp";
    std::ofstream(passing) << "# The phone asks for the start page with its own address.\n"
                              "wait request /app/start\n"
                              "expect request ipaddress=127.0.0.1\n"
                              "expect text \"Starting application...\"\n"
                              "expect log \"AGPPhonelet started\"\n"
                              "push queue ServerAddr=127.0.0.1&ProgramName=news\n"
                              "wait request /news\n";
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
