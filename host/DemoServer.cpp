// The demo's application server: serves apps/demo and a few pages that answer what the phone sent.
#include "DemoServer.h"

#include <httplib.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>

#include "EmulatedPhone.h"
#include "ExclusiveListener.h"
#include "PushEndpoint.h"

namespace {

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string escapeXml(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

bool isPageName(const std::string& name) {
    return !name.empty() && name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string::npos;
}

} // namespace

DemoServer::DemoServer(const std::string& folder) : mFolder(folder), mServer(newExclusiveServer()) {}

DemoServer::~DemoServer() {
    stop();
}

void DemoServer::setPhone(EmulatedPhone* phone, const std::string& application) {
    mPhone = phone;
    mApplication = application;
}

std::string DemoServer::document(const std::string& name) const {
    std::ifstream in(mFolder + "/" + name + ".xml");
    if (!isPageName(name) || !in) {
        return "";
    }
    std::stringstream text;
    text << in.rdbuf();
    std::string xml = text.str();
    replaceAll(xml, "{{base}}", "http://127.0.0.1:" + std::to_string(mPort));
    return xml;
}

void DemoServer::pushLater() {
    if (mPusher.joinable()) {
        mPusher.join();
    }
    mPusher = std::thread([this] {
        std::this_thread::sleep_for(std::chrono::seconds(3));
        if (mPhone != nullptr) {
            mPhone->push("ServerAddr=127.0.0.1&ServerPort=" + std::to_string(mPort) +
                             "&ProgramName=demo/pushed.xml",
                         mApplication, PushEndpoint::pushType("active"), "demo server");
        }
    });
}

bool DemoServer::start(std::string& problem) {
    auto answer = [](httplib::Response& response, const std::string& xml) {
        if (xml.empty()) {
            response.status = 404;
            return;
        }
        response.set_content(xml, "text/xml; charset=utf-8");
    };
    mServer->set_tcp_nodelay(true);
    mServer->Get(R"(/demo/([a-z-]+)\.xml)",
                 [this, answer](const httplib::Request& request, httplib::Response& response) {
                     answer(response, document(request.matches[1]));
                 });
    // The pictures of the menu entries and the alert, from the demo's pictures folder.
    mServer->Get(R"(/demo/pictures/([a-z-]{1,32})\.png)", [this](const httplib::Request& request,
                                                                 httplib::Response& response) {
        std::ifstream in(mFolder + "/pictures/" + request.matches[1].str() + ".png", std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (bytes.empty()) {
            response.status = 404;
            return;
        }
        response.set_content(bytes, "image/png");
    });
    mServer->Get("/demo/menu", [this, answer](const httplib::Request& request, httplib::Response& response) {
        const std::string page = request.get_param_value("page");
        if (page == "push") {
            pushLater();
            return answer(response, document("push-coming"));
        }
        answer(response, document(page));
    });
    mServer->Get("/demo/echo", [this, answer](const httplib::Request& request, httplib::Response& response) {
        std::string received;
        for (const auto& parameter : request.params) {
            received += parameter.first + " = " + parameter.second + "\n";
        }
        std::string xml = document("echo");
        replaceAll(xml, "{{received}}", escapeXml(received.empty() ? "(nothing)\n" : received));
        answer(response, xml);
    });
    mPort = mServer->bind_to_any_port("127.0.0.1");
    if (mPort <= 0) {
        problem = "the demo server cannot listen on 127.0.0.1";
        return false;
    }
    mThread = std::thread([this] { mServer->listen_after_bind(); });
    return true;
}

void DemoServer::stop() {
    if (mThread.joinable()) {
        mServer->stop();
        mThread.join();
    }
    if (mPusher.joinable()) {
        mPusher.join();
    }
}
