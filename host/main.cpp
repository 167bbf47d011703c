// agp-phone: the emulated desk phone that runs the XML application browser plug-in.
#include <limits.h>
#include <malloc.h>
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <nlohmann/json.hpp>

#include "ControlApi.h"
#include "DemoServer.h"
#include "EmulatedPhone.h"
#include "ListenerGuard.h"
#include "PhoneConfiguration.h"
#include "PhoneJournal.h"
#include "PushEndpoint.h"
#include "ScenarioScript.h"
#include "TerminalKeys.h"
#include "TextRenderer.h"
#include "logging/LogSink.h"

namespace {

struct Arguments {
    std::string url;
    std::string configFile;
    std::string application;
    std::string plugin;
    std::string push = "127.0.0.1:8085";
    std::string http = "127.0.0.1:8080";
    std::string render = "none";
    std::string model;
    std::string script;
    std::vector<std::string> httpNames;
    std::string httpToken;
    bool headless = false;
    bool demo = false;
};

// Collects the errors the phonelet logs while it starts, to tell why a start failed.
class StartupErrors : public LogSink {
public:
    int maximumLevel() const override { return 2; }
    void receive(const LogEntry& entry) override {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mFirst.empty()) {
            mFirst = entry.text;
        }
    }
    std::string first() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mFirst;
    }

private:
    std::mutex mMutex;
    std::string mFirst;
};

std::string executableDirectory() {
    char path[PATH_MAX] = {0};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    std::string text = length > 0 ? std::string(path, static_cast<size_t>(length)) : ".";
    return text.substr(0, text.rfind('/'));
}

// Next to the program in a build tree, in ../lib/agp once installed.
std::string defaultPluginPath() {
    const std::string directory = executableDirectory();
    const std::string beside = directory + "/libagpphonelet.so";
    return access(beside.c_str(), F_OK) == 0 ? beside : directory + "/../lib/agp/libagpphonelet.so";
}

// Installed in ../share/agp/NAME beside the program; a program in a build tree uses the sources.
std::string findDataFolder(const std::string& name, const std::string& sourceFolder,
                           const std::string& marker) {
    const std::string installed = executableDirectory() + "/../share/agp/" + name;
    return access((installed + "/" + marker).c_str(), R_OK) == 0
               ? installed
               : std::string(AGP_SOURCE_DIR) + "/" + sourceFolder;
}

bool splitAddress(const std::string& address, std::string& host, int& port) {
    const size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        return false;
    }
    host = address.substr(0, colon);
    const std::string portText = address.substr(colon + 1);
    if (portText.empty() || portText.size() > 5 ||
        portText.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    port = std::stoi(portText);
    return port <= 65535;
}

int fail(int status, const std::string& message) {
    std::cerr << "agp-phone: " << message << "\n";
    return status;
}

// Waits for SIGINT or SIGTERM, the control API's quit, or the phonelet to stop by itself (exit).
// Once the screen has stayed the same for a second, memory freed since the last trim goes back
// to the system: a large document leaves its freed pages inside the heap otherwise, for as long
// as the program runs. Not while the screen keeps changing: giving pages back and faulting them
// in again with the next document made each key press several times slower.
void runUntilStopped(EmulatedPhone& phone, const ControlApi& control, const sigset_t& signals) {
    const timespec interval{0, 200 * 1000 * 1000};
    const int quietIntervals = 5;
    std::uint64_t trimmedAt = phone.display().revision();
    std::uint64_t seen = trimmedAt;
    int quiet = 0;
    while (phone.isRunning() && !control.quitRequested()) {
        if (sigtimedwait(&signals, nullptr, &interval) > 0) {
            return;
        }
        const std::uint64_t revision = phone.display().revision();
        quiet = revision == seen ? quiet + 1 : 0;
        seen = revision;
        if (quiet >= quietIntervals && revision != trimmedAt) {
            trimmedAt = revision;
            malloc_trim(0);
        }
    }
}

// Every change of the display wakes the web pages' event streams; the text view prints it too.
void watchScreen(EmulatedPhone& phone, PhoneJournal& journal, bool printText) {
    auto last = std::make_shared<std::string>();
    phone.display().setChangeListener([&phone, &journal, last, printText] {
        journal.screenChanged();
        if (!printText) {
            return;
        }
        const std::string text = TextRenderer::render(phone.display().snapshot());
        if (text != *last) {
            *last = text;
            std::cout << "----\n" << text << std::flush;
        }
    });
}

} // namespace

// Blocks up to 1 MB (documents, the journal's copies of them, event texts) come from the heap,
// and up to 32 MB of freed heap stays there until the screen is quiet (runUntilStopped): by
// default each large block was mapped afresh, or the heap's top given back with every free, and
// every page faulted in again, a third of a key press on a 500-option list.
void keepLargeBlocksInTheHeap() {
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
    mallopt(M_TRIM_THRESHOLD, 32 << 20);
}

int main(int argc, char** argv) {
    keepLargeBlocksInTheHeap();
    Arguments arguments;
    CLI::App app{"agp-phone: an emulated desk phone running the XML application browser"};
    app.add_option("--url", arguments.url, "Start URL of the XML application (fills application entry 1)");
    app.add_option("--config", arguments.configFile, "Configuration file with key=value lines");
    app.add_option("--app", arguments.application, "Name of the application to start (default: entry 1)");
    app.add_option("--plugin", arguments.plugin, "Path of libagpphonelet.so (default: beside the program)");
    app.add_option("--push", arguments.push, "Push listener HOST:PORT, or off")->capture_default_str();
    app.add_option("--http", arguments.http, "Control API (and web page) HOST:PORT, or off")
        ->capture_default_str();
    app.add_option("--http-name", arguments.httpNames,
                   "Another name the control API answers to (as HOST in the browser's address)");
    app.add_option("--http-token", arguments.httpToken,
                   "Token every control API request must carry; needed to listen beyond loopback");
    app.add_option("--render", arguments.render, "Print every new screen: text or none")
        ->check(CLI::IsMember({"text", "none"}))
        ->capture_default_str();
    app.add_option("--model", arguments.model, "Phone model: soft-keys or no-soft-keys")
        ->check(CLI::IsMember({"soft-keys", "no-soft-keys"}));
    app.add_flag("--headless", arguments.headless, "Run without the web page");
    app.add_flag("--demo", arguments.demo, "Run the bundled demo application on an embedded server");
    app.add_option("--script", arguments.script,
                   "Run a scenario script, then end (0: every expectation held)");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version end well; every mistake in the arguments ends with status 2.
        return app.exit(error) == 0 ? 0 : 2;
    }

    PhoneConfiguration configuration;
    std::vector<std::string> problems;
    if (!arguments.configFile.empty() && !configuration.loadFile(arguments.configFile, problems)) {
        for (const std::string& problem : problems) {
            std::cerr << "agp-phone: " << problem << "\n";
        }
        return 2;
    }
    for (const std::string& notice : configuration.notices()) {
        std::cerr << "agp-phone: " << notice << "\n";
    }
    std::string problem;
    DemoServer demoServer(findDataFolder("demo", "apps/demo", "start.xml"));
    if (arguments.demo) {
        if (!demoServer.start(problem)) {
            return fail(1, problem);
        }
        arguments.url = "http://127.0.0.1:" + std::to_string(demoServer.port()) + "/demo/start.xml";
        arguments.application = arguments.application.empty() ? "demo" : arguments.application;
        if (arguments.render == "none") {
            arguments.render = "text";
        }
    }
    if (!arguments.url.empty() &&
        !configuration.useApplicationUrl(arguments.url, arguments.application, problem)) {
        return fail(2, "--url: " + problem);
    }
    const std::string application = configuration.applicationToStart(arguments.application);
    if (application.empty()) {
        return fail(2, "no application to start: give --url URL, or --config FILE with app-name-1");
    }
    ScenarioScript script;
    if (!arguments.script.empty() && !script.load(arguments.script, problems)) {
        for (const std::string& scriptProblem : problems) {
            std::cerr << "agp-phone: " << scriptProblem << "\n";
        }
        return 2;
    }
    std::string pushHost;
    int pushPort = 0;
    if (arguments.push != "off" && !splitAddress(arguments.push, pushHost, pushPort)) {
        return fail(2, "--push: expected HOST:PORT or off, got '" + arguments.push + "'");
    }
    std::string httpHost;
    int httpPort = 0;
    if (arguments.http != "off" && !splitAddress(arguments.http, httpHost, httpPort)) {
        return fail(2, "--http: expected HOST:PORT or off, got '" + arguments.http + "'");
    }
    if (arguments.http != "off" && !ListenerGuard::isLoopback(httpHost) && arguments.httpToken.empty()) {
        return fail(2, "--http: listening beyond loopback (" + httpHost +
                           ") lets others drive the phone; give --http-token TOKEN as well");
    }

    // Signals are taken by the main thread alone; every thread started later inherits the mask.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    PhoneOptions options = configuration.phoneOptions();
    options.applicationName = application;
    if (options.filesFolder.empty()) {
        options.filesFolder = findDataFolder("files", "apps/files", ".");
    }
    options.skinFolder = findDataFolder("skin", "skin", "05_Icons/05_Phone.png");
    if (!arguments.model.empty()) {
        PhoneConfiguration::applyModel(arguments.model, options.model);
    }
    PhoneJournal journal;
    EmulatedPhone phone(options);
    if (!options.phonebookFile.empty() && !phone.directory().loadFile(options.phonebookFile, problems)) {
        for (const std::string& phonebookProblem : problems) {
            std::cerr << "agp-phone: " << phonebookProblem << "\n";
        }
        return 2;
    }
    phone.http().setTrafficObserver(
        std::shared_ptr<HttpTrafficObserver>(&journal, [](HttpTrafficObserver*) {}));
    watchScreen(phone, journal, arguments.render == "text");
    phone.setPushObserver([&journal](const std::string& via, const std::string& data, const std::string& app,
                                     int type,
                                     int result) { journal.pushReceived(via, data, app, type, result); });
    for (const auto& value : configuration.databaseValues()) {
        phone.configuration().setValue(value.first, value.second);
    }
    if (!phone.loadPhonelet(arguments.plugin.empty() ? defaultPluginPath() : arguments.plugin, problem)) {
        return fail(1, problem);
    }
    PushEndpoint pushEndpoint(phone, application);
    if (arguments.push != "off" && !pushEndpoint.start(pushHost, pushPort, problem)) {
        phone.stop();
        return fail(1, problem);
    }
    ControlApi control(phone, journal, application);
    for (const std::string& name : arguments.httpNames) {
        control.guard().addName(name);
    }
    control.guard().setToken(arguments.httpToken);
    const std::string webFolder = findDataFolder("web", "web", "index.html");
    const bool webPage = arguments.http != "off" && !arguments.headless && control.serveWebPage(webFolder);
    if (arguments.http != "off" && !arguments.headless && !webPage) {
        std::cerr << "agp-phone: no web page in " << webFolder
                  << " (index.html missing); the control API runs alone\n";
    }
    if (arguments.http != "off" && !control.start(httpHost, httpPort, problem)) {
        phone.stop();
        return fail(1, "--http: " + problem);
    }
    demoServer.setPhone(&phone, application);
    StartupErrors startupErrors;
    addLogSink(&startupErrors);
    phone.start();
    removeLogSink(&startupErrors);
    if (!startupErrors.first().empty()) {
        phone.stop();
        return fail(1, "the application " + application + " did not start: " + startupErrors.first());
    }
    if (arguments.push != "off") {
        std::cout << "agp-phone: pushes to http://" << pushHost << ":" << pushEndpoint.port() << "/push\n";
    }
    if (arguments.http != "off") {
        std::cout << "agp-phone: control API at http://" << httpHost << ":" << control.port() << "/api/\n";
    }
    if (webPage) {
        std::cout << "agp-phone: web page at http://" << httpHost << ":" << control.port() << "/\n";
    }
    std::cout << std::flush;
    int status = 0;
    if (!arguments.script.empty()) {
        std::string report;
        if (!script.run(phone, journal, report)) {
            std::cerr << "agp-phone: " << report;
            status = 1;
        }
    } else {
        TerminalKeys keys(phone, arguments.render == "text");
        runUntilStopped(phone, control, signals);
    }
    control.stop();
    pushEndpoint.stop();
    demoServer.stop();
    phone.stop();
    return status;
}
