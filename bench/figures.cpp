// The figures of `make bench`: each measured against its baseline in the same run, in interleaved
// rounds, printed as one table and as one line per figure that scripts can read.
#include <expat.h>
#include <httplib.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPGUIHandler.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPXMLParser.h"
#include "ChildProcess.h"
#include "PhoneJournal.h"
#include "display/Display.h"
#include "events/EventLoop.h"

namespace {

using Clock = std::chrono::steady_clock;

double microsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    if (values.empty()) {
        return NAN;
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double percentile99(std::vector<double> values) {
    if (values.empty()) {
        return NAN;
    }
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, values.size() * 99 / 100)];
}

// One row of the table. A figure with a baseline is judged by its ratio, one without by its value.
struct Figure {
    std::string name;
    std::string unit;
    double value = NAN;
    double baseline = NAN;
    double target = NAN;

    bool relative() const { return !std::isnan(baseline); }
    double judged() const { return relative() ? value / baseline : value; }
    bool met() const { return !std::isnan(judged()) && judged() <= target; }
};

std::vector<Figure> gFigures;

void record(const std::string& name, const std::string& unit, double value, double baseline, double target) {
    gFigures.push_back({name, unit, value, baseline, target});
    std::fprintf(stderr, "measured %s\n", name.c_str());
}

void printTable() {
    std::printf("\n%-34s %14s %14s %8s %8s %4s\n", "figure", "value", "baseline", "ratio", "target", "met");
    for (const Figure& f : gFigures) {
        char baseline[32] = "-";
        char ratio[32] = "-";
        if (f.relative()) {
            std::snprintf(baseline, sizeof baseline, "%.1f %s", f.baseline, f.unit.c_str());
            std::snprintf(ratio, sizeof ratio, "%.2f", f.value / f.baseline);
        }
        char value[32];
        std::snprintf(value, sizeof value, "%.1f %s", f.value, f.unit.c_str());
        std::printf("%-34s %14s %14s %8s %8.2f %4s\n", f.name.c_str(), value, baseline, ratio, f.target,
                    f.met() ? "yes" : "no");
    }
    std::printf("\n");
    for (const Figure& f : gFigures) {
        if (f.relative()) {
            std::printf("figure %s value=%.3f baseline=%.3f ratio=%.3f target=%.2f met=%s\n", f.name.c_str(),
                        f.value, f.baseline, f.value / f.baseline, f.target, f.met() ? "yes" : "no");
        } else {
            std::printf("figure %s value=%.3f target=%.2f met=%s\n", f.name.c_str(), f.value, f.target,
                        f.met() ? "yes" : "no");
        }
    }
}

// ---- Documents ----

// A list of `options` options with titles and URLs (500 options make about 94 KB).
std::string listDocument(int options, const std::string& title = "Directory",
                         const std::string& url = "http://server.example/app/select") {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<IppDisplay>\n<IppScreen ID=\"1\">\n"
                      "<IppList Type=\"IMPLICIT\">\n<Title>" +
                      title + "</Title>\n<Url>" + url + "</Url>\n";
    for (int i = 0; i < options; ++i) {
        const std::string n = std::to_string(i);
        xml += "<Option Key=\"entry\" Value=\"" + n + "\" Selected=\"FALSE\">\n<OptionText>Entry number " +
               n + " of the directory list</OptionText>\n<Url>http://server.example/app/entry?id=" + n +
               "&amp;view=full</Url>\n</Option>\n";
    }
    return xml + "</IppList>\n</IppScreen>\n</IppDisplay>\n";
}

// A list document of about `bytes` bytes.
std::string listDocumentOfSize(size_t bytes) {
    const size_t perOption = (listDocument(100).size() - listDocument(0).size()) / 100;
    return listDocument(static_cast<int>(std::max<size_t>(1, bytes / perOption)));
}

// ---- Parsing in this process ----

void emptyStart(void*, const char*, const char**) {}
void emptyEnd(void*, const char*) {}
void emptyText(void*, const char*, int) {}

double bareExpatMicros(const std::string& xml) {
    const auto start = Clock::now();
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(parser, emptyStart, emptyEnd);
    XML_SetCharacterDataHandler(parser, emptyText);
    XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1);
    XML_ParserFree(parser);
    return microsSince(start);
}

// Parse and build the element tree; the tree's deletion is not timed.
double phoneletParseMicros(const std::string& xml) {
    std::string copy = xml;
    AGPCommonBase* root = nullptr;
    const auto start = Clock::now();
    AGPPhoneletManager::getAGPXMLParser()->parseXMLData(copy, root);
    const double micros = microsSince(start);
    if (root != nullptr) {
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
    }
    return micros;
}

// Rounds alternate between the two, so that whatever else the machine does falls on both alike.
void compareParsing(const std::string& name, const std::string& xml, int rounds, double target) {
    std::vector<double> phonelet;
    std::vector<double> expat;
    phoneletParseMicros(xml); // warm-up: the pool, the allocator, the caches
    for (int round = 0; round < rounds; ++round) {
        phonelet.push_back(phoneletParseMicros(xml));
        expat.push_back(bareExpatMicros(xml));
    }
    record(name, "us", median(phonelet), median(expat), target);
}

void parsingFigures() {
    AGPObjectPool::initPool();
    const std::string list = listDocument(500);
    compareParsing("parse_list_500", list, 200, 2.0);
    const std::string large = listDocumentOfSize(20 << 20);
    compareParsing("parse_20mb", large, 5, 2.5);
    {
        PhoneJournal journal; // the log sink that agp-phone always registers
        compareParsing("parse_list_500_with_journal", list, 200, 2.2);
    }
    // The cost per byte must not grow with the size: 20 MB against 100 KB.
    std::printf("\nparse cost against size (phonelet, median):\n");
    double perByteSmall = NAN;
    double perByteLarge = NAN;
    for (size_t size : {size_t(1) << 10, size_t(10) << 10, size_t(100) << 10, size_t(1) << 20,
                        size_t(10) << 20, size_t(20) << 20}) {
        const std::string xml = listDocumentOfSize(size);
        const int rounds = size >= (size_t(10) << 20) ? 3 : 30;
        std::vector<double> micros;
        for (int round = 0; round < rounds; ++round) {
            micros.push_back(phoneletParseMicros(xml));
        }
        const double nsPerByte = median(micros) * 1000.0 / static_cast<double>(xml.size());
        std::printf("  %10zu bytes  %8.2f ns/byte\n", xml.size(), nsPerByte);
        if (size == (size_t(100) << 10)) {
            perByteSmall = nsPerByte;
        }
        perByteLarge = nsPerByte;
    }
    record("parse_cost_20mb_per_100kb", "ns/B", perByteLarge, perByteSmall, 1.5);
    AGPPhoneletManager::shutdownPhonelet();
}

// ---- Install and show in this process ----

// Five screens of a form with 50 items each (text fields and string items), and their commands.
std::string formDocument() {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<IppDisplay>\n";
    for (int screen = 1; screen <= 5; ++screen) {
        xml += "<IppScreen ID=\"" + std::to_string(screen) +
               "\" CommandCount=\"2\">\n<IppForm ItemCount=\"50\">"
               "<Title>Form " +
               std::to_string(screen) + "</Title><Url>http://server.example/app/form</Url>\n";
        for (int item = 0; item < 50; ++item) {
            const std::string n = std::to_string(item);
            xml += item % 2 == 0 ? "<IppTextField Key=\"field" + n +
                                       "\" Constraint=\"ANY\" MaxSize=\"20\" "
                                       "Default=\"TEXT\"><Label>Field " +
                                       n + "</Label><Text>Value " + n + "</Text></IppTextField>\n"
                                 : "<IppStringItem><Label>Item " + n + "</Label><Text>Text of item " + n +
                                       "</Text></IppStringItem>\n";
        }
        xml += "</IppForm>\n<IppCommand Type=\"SELECT\" Priority=\"0\"><Label>Send</Label></IppCommand>"
               "<IppCommand Type=\"BACK\" Priority=\"1\"><Label>Back</Label></IppCommand>\n</IppScreen>\n";
    }
    return xml + "</IppDisplay>\n";
}

// Parse, build, and install on queue 0 with the first screen shown on a real display (widgets
// made, the display's event loop run to the end); the screens it replaces in the cache are
// deleted within the time, as on the phone.
double installAndShowMicros(AGPGUIHandler& gui, DisplayAPI::Display& display, const std::string& xml) {
    std::string copy = xml;
    AGPCommonBase* root = nullptr;
    const auto start = Clock::now();
    AGPPhoneletManager::getAGPXMLParser()->parseXMLData(copy, root);
    if (!gui.processXmlTreeObject(root, 0, AGPMessage::UrlRequest_XML, "http://server.example/app/form", 0,
                                  true) &&
        root != nullptr) {
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
    }
    display.waitUntilSettled();
    return microsSince(start);
}

void installAndShowFigures() {
    AGPObjectPool::initPool();
    EventLoop loop;
    DisplayAPI::Display display(loop, DisplayAPI::DisplayModel());
    AGPPhoneletManager::getAGPServerConnection();
    AGPPhoneletManager::getAGPXMLParser();
    AGPGUIHandler* gui = AGPPhoneletManager::getAGPGUIHandler();
    if (!AGPPhoneletManager::getAGPMessageQueueHandler()->startAGPMessageQueueHandler(4) ||
        !gui->startAGPGUIHandler(&display, nullptr)) {
        std::fprintf(stderr, "the GUI handler did not start\n");
        AGPPhoneletManager::shutdownPhonelet();
        return;
    }
    gui->show();
    const std::string form = formDocument();
    std::vector<double> phonelet;
    std::vector<double> expat;
    installAndShowMicros(*gui, display, form);
    for (int round = 0; round < 100; ++round) {
        phonelet.push_back(installAndShowMicros(*gui, display, form));
        expat.push_back(bareExpatMicros(form));
    }
    record("install_show_form_5x50", "us", median(phonelet), median(expat), 3.0);
    AGPPhoneletManager::shutdownPhonelet();
    display.waitUntilSettled();
}

// ---- agp-phone as shipped ----

// One screen of a 50-item form, screen ID `id`: every document a new screen for the cache.
std::string formScreen(int id) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<IppDisplay><IppScreen ID=\"" +
                      std::to_string(id) + "\"><IppForm ItemCount=\"50\"><Title>Form " + std::to_string(id) +
                      "</Title><Url>http://server.example/app/form</Url>\n";
    for (int item = 0; item < 50; ++item) {
        const std::string n = std::to_string(item);
        xml += "<IppTextField Key=\"field" + n +
               "\" Constraint=\"ANY\" MaxSize=\"20\" Default=\"TEXT\"><Label>Field " + n +
               "</Label><Text>Value " + n + "</Text></IppTextField>\n";
    }
    return xml + "</IppForm></IppScreen></IppDisplay>\n";
}

// Serves lists whose title counts the requests; each option asks for the next list.
class ListServer {
public:
    explicit ListServer(int options) : mOptions(options) {
        mServer.set_tcp_nodelay(true);
        mPort = mServer.bind_to_any_port("127.0.0.1");
        mServer.Get(".*", [this](const httplib::Request&, httplib::Response& response) {
            const int number = ++mServed;
            response.set_content(listDocument(mOptions, "List " + std::to_string(number),
                                              "http://127.0.0.1:" + std::to_string(mPort) + "/next"),
                                 "text/xml");
        });
        mThread = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }
    }
    ~ListServer() {
        mServer.stop();
        mThread.join();
    }
    int port() const { return mPort; }
    int served() const { return mServed; }
    void setOptions(int options) { mOptions = options; }

private:
    httplib::Server mServer;
    std::atomic<int> mOptions;
    std::atomic<int> mServed{0};
    int mPort = 0;
    std::thread mThread;
};

// agp-phone started against the server, with its control API on a free port.
class PhoneProcess {
public:
    // `extra` arguments come after the usual ones (a later --config adds to --url's entry).
    PhoneProcess(int serverPort, const std::string& name, const std::vector<std::string>& extra = {})
        : mProcess(AGP_PHONE_PATH,
                   withExtra({"--url", "http://127.0.0.1:" + std::to_string(serverPort) + "/start", "--app",
                              name, "--push", "off", "--http", "127.0.0.1:0", "--headless"},
                             extra)) {
        const std::string port = mProcess.waitForOutput("control API at http://127.0.0.1:([0-9]+)/api/");
        mControlPort = port.empty() ? 0 : std::stoi(port);
    }
    ~PhoneProcess() { mProcess.stop(); }

    int controlPort() const { return mControlPort; }
    Clock::time_point started() const { return mProcess.startedAt(); }
    long residentKb() const { return mProcess.residentKb(); }

private:
    static std::vector<std::string> withExtra(std::vector<std::string> arguments,
                                              const std::vector<std::string>& extra) {
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return arguments;
    }

    ChildProcess mProcess;
    int mControlPort = 0;
};

// Reads the control API's event stream and wakes whoever waits for a piece of it.
class EventWatcher {
public:
    explicit EventWatcher(int port) : mClient("127.0.0.1", port) {
        mClient.set_read_timeout(60);
        mThread = std::thread([this] {
            mClient.Get("/api/events", [this](const char* data, size_t length) {
                std::lock_guard<std::mutex> lock(mMutex);
                mText.append(data, length);
                mArrived.notify_all();
                return !mStopping;
            });
        });
    }
    ~EventWatcher() {
        mStopping = true;
        mClient.stop();
        mThread.join();
    }
    bool waitFor(const std::string& piece, std::chrono::seconds timeout = std::chrono::seconds(20)) {
        std::unique_lock<std::mutex> lock(mMutex);
        const bool seen =
            mArrived.wait_for(lock, timeout, [&] { return mText.find(piece) != std::string::npos; });
        mText.clear(); // what came before is done with
        return seen;
    }

private:
    httplib::Client mClient;
    std::thread mThread;
    std::mutex mMutex;
    std::condition_variable mArrived;
    std::string mText;
    std::atomic<bool> mStopping{false};
};

std::string titlePiece(int number) {
    return "\"title\":\"List " + std::to_string(number) + "\"";
}

// OK on the focused option through the control API until the event stream shows the next list.
void keyPressFigures(const std::string& name, int options, int presses, double medianTargetMs,
                     double p99TargetMs) {
    ListServer server(options);
    PhoneProcess phone(server.port(), "Figures-" + std::to_string(getpid()) + "-" + std::to_string(options));
    if (phone.controlPort() == 0) {
        std::fprintf(stderr, "%s: agp-phone did not start\n", name.c_str());
        return;
    }
    EventWatcher events(phone.controlPort());
    if (!events.waitFor(titlePiece(1))) {
        std::fprintf(stderr, "%s: the first list did not appear\n", name.c_str());
        return;
    }
    httplib::Client api("127.0.0.1", phone.controlPort());
    api.set_tcp_nodelay(true);
    std::vector<double> millis;
    for (int press = 0; press < presses; ++press) {
        const int next = server.served() + 1;
        const auto start = Clock::now();
        api.Post("/api/keys", R"({"keys": ["ok"]})", "application/json");
        if (!events.waitFor(titlePiece(next))) {
            std::fprintf(stderr, "%s: list %d did not appear\n", name.c_str(), next);
            return;
        }
        millis.push_back(microsSince(start) / 1000.0);
    }
    record(name + "_median", "ms", median(millis), NAN, medianTargetMs);
    if (!std::isnan(p99TargetMs)) {
        record(name + "_p99", "ms", percentile99(millis), NAN, p99TargetMs);
    }
}

// Start to first screen, idle memory, a kept-alive control-API request, memory after large documents.
void processFigures() {
    std::vector<double> startMillis;
    std::vector<double> idleMb;
    for (int run = 0; run < 5; ++run) {
        ListServer server(10);
        PhoneProcess phone(server.port(), "Figures-start-" + std::to_string(getpid()));
        if (phone.controlPort() == 0) {
            std::fprintf(stderr, "agp-phone did not start\n");
            return;
        }
        httplib::Client api("127.0.0.1", phone.controlPort());
        for (int i = 0; i < 5000; ++i) {
            auto text = api.Get("/api/screen/text");
            if (text && text->body.find("List 1") != std::string::npos) {
                startMillis.push_back(microsSince(phone.started()) / 1000.0);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        // Idle: past the second of quiet after which agp-phone gives freed memory back.
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        idleMb.push_back(static_cast<double>(phone.residentKb()) / 1024.0);
    }
    record("start_to_first_screen", "ms", median(startMillis), NAN, 55.0);
    record("idle_resident", "MB", median(idleMb), NAN, 15.0);

    ListServer server(10);
    PhoneProcess phone(server.port(), "Figures-mem-" + std::to_string(getpid()));
    if (phone.controlPort() == 0) {
        return;
    }
    httplib::Client api("127.0.0.1", phone.controlPort());
    std::vector<double> secondMillis;
    for (int i = 0; i < 50; ++i) {
        api.Get("/api/state");
        const auto start = Clock::now();
        api.Get("/api/state");
        secondMillis.push_back(microsSince(start) / 1000.0);
    }
    record("control_api_kept_alive_request", "ms", median(secondMillis), NAN, 2.0);

    EventWatcher events(phone.controlPort());
    events.waitFor(titlePiece(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const double before = static_cast<double>(phone.residentKb()) / 1024.0;
    server.setOptions(
        static_cast<int>((1 << 20) / ((listDocument(100).size() - listDocument(0).size()) / 100)));
    for (int document = 0; document < 60; ++document) {
        const int next = server.served() + 1;
        api.Post("/api/keys", R"({"keys": ["ok"]})", "application/json");
        if (!events.waitFor(titlePiece(next), std::chrono::seconds(60))) {
            std::fprintf(stderr, "the 1 MB list %d did not appear\n", next);
            break;
        }
    }
    // agp-phone gives freed memory back once its screen has been quiet for a second.
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const double after = static_cast<double>(phone.residentKb()) / 1024.0;
    record("resident_growth_60_documents_1mb", "MB", after - before, NAN, 20.0);
}

// Three tabs, each sent 20 documents of one new 50-item screen by active pushes: 60 screens in
// the caches, against the same phone idle with its three first screens.
void threeTabFigure() {
    httplib::Server server;
    std::atomic<int> pushedServed{0};
    server.set_tcp_nodelay(true);
    server.Get(".*", [&pushedServed](const httplib::Request& request, httplib::Response& response) {
        const std::string n = request.get_param_value("n");
        pushedServed += n.empty() ? 0 : 1;
        response.set_content(formScreen(n.empty() ? 1 : std::stoi(n)), "text/xml");
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    std::thread listener([&server] { server.listen_after_bind(); });
    const std::string name = "Figures-tabs-" + std::to_string(getpid());
    const std::string config = "/tmp/" + name + ".conf";
    {
        std::ofstream file(config);
        file << "num-tabs-1=3\napp-all-tabs-start-1=true\ntab1-app-name-1=one\ntab2-app-name-1=two\n"
                "tab3-app-name-1=three\n";
    }
    {
        PhoneProcess phone(port, name, {"--config", config});
        httplib::Client api("127.0.0.1", phone.controlPort());
        api.set_read_timeout(70);
        const auto idle = [&api] { api.Get("/api/idle?timeout=60000"); };
        idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const double before = static_cast<double>(phone.residentKb()) / 1024.0;
        int id = 100;
        for (const char* tab : {"one", "two", "three"}) {
            for (int document = 0; document < 20; ++document) {
                const std::string data = "ServerAddr=127.0.0.1&ServerPort=" + std::to_string(port) +
                                         "&ProgramName=form%3Fn%3D" + std::to_string(++id) +
                                         "&Application=" + tab;
                api.Post("/api/push", nlohmann::json({{"data", data}, {"type", "active"}}).dump(),
                         "application/json");
                idle();
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const double after = static_cast<double>(phone.residentKb()) / 1024.0;
        if (pushedServed != 60) {
            std::fprintf(stderr, "only %d of the 60 pushed documents were fetched\n", pushedServed.load());
        }
        record("resident_3_tabs_20_screens_50_items", "MB", after - before, NAN, 15.0);
    }
    std::remove(config.c_str());
    server.stop();
    listener.join();
}

} // namespace

// Arguments name the groups to measure (parsing, install, keys, process); none measures all.
int main(int argc, char** argv) {
    signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> groups(argv + 1, argv + argc);
    const auto wanted = [&groups](const std::string& group) {
        return groups.empty() || std::find(groups.begin(), groups.end(), group) != groups.end();
    };
    if (wanted("parsing")) {
        parsingFigures();
    }
    if (wanted("install")) {
        installAndShowFigures();
    }
    if (wanted("keys")) {
        keyPressFigures("key_press_list_10", 10, 300, 1.0, 5.0);
        keyPressFigures("key_press_list_500", 500, 100, 5.0, NAN);
    }
    if (wanted("process")) {
        processFigures();
        threeTabFigure();
    }
    printTable();
    return 0;
}
