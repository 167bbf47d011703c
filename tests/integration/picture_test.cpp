// Pictures on the emulated phone: downloaded from a loopback server, cached, refused, left out.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"
#include "TestPictures.h"
#include "display/Image.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;
namespace fs = std::filesystem;

std::string option(const std::string& value, const std::string& image) {
    return "<Option Key=\"pick\" Value=\"" + value + "\" Selected=\"FALSE\"><OptionText>" + value +
           "</OptionText>" + image + "</Option>";
}

class Pictures : public ::testing::Test {
protected:
    Pictures() : mFiles(fs::temp_directory_path() / uniqueApplicationName("agp-files-")) {
        std::error_code ignored;
        fs::remove_all(mFiles, ignored);
        fs::create_directories(mFiles / "pictures");
        std::ofstream(mFiles / "pictures" / "logo.png", std::ios::binary) << TestPictures::png(20, 10);
        fs::create_symlink("/dev/zero", mFiles / "zero.png");
    }
    ~Pictures() override {
        mPhone.reset();
        std::error_code ignored;
        fs::remove_all(mFiles, ignored);
    }

    std::string list(const std::string& title, const std::string& options, int count) const {
        return "<IppDisplay><IppScreen ID=\"1\"><IppList Count=\"" + std::to_string(count) + "\"><Title>" +
               title + "</Title><Url>" + picture("/app/chosen") + "</Url>" + options +
               "</IppList></IppScreen></IppDisplay>";
    }

    std::string picture(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(mServer.port()) + path;
    }

    // Serves `document` as the first page and waits until it shows.
    void start(const std::string& document) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Pictures-");
        options.filesFolder = mFiles.string();
        options.skinFolder = AGP_SKIN_DIR;
        mPhone = std::make_unique<EmulatedPhone>(options);
        mServer.setDocument("/app/start", document);
        mServer.setDocument("/app/chosen", "");
        auto values = loopbackApplication(options.applicationName, std::to_string(mServer.port()));
        values.push_back({"related-device-type", "Veltria 60"});
        values.push_back({"display-skin", "0"});
        ASSERT_TRUE(mPhone->configuration().setValues(values));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        // An alert may stand as a popup over no screen of the document.
        waitFor([](const json& s) {
            return (s["screen"].is_object() && s["screen"]["ownerId"] != 0) || s["popup"].is_object();
        });
    }

    json waitFor(const std::function<bool(const json&)>& condition) {
        return waitForScreen(*mPhone, condition);
    }

    static const json& row(const json& shot, size_t index) { return shot["screen"]["rows"][index]; }

    // The bytes the phone would hand the web page for a row's picture.
    static std::string bytesOf(const json& image) {
        const auto data = DisplayAPI::Image::find(image["id"].get<unsigned long>());
        return data ? std::string(data->bytes.begin(), data->bytes.end()) : std::string();
    }

    ApplicationServer mServer;
    fs::path mFiles;
    std::unique_ptr<EmulatedPhone> mPhone;
};

TEST_F(Pictures, ListOptionsShowServerPicturesAndTheCacheSparesTheSecondDownload) {
    const std::string logo = TestPictures::png(16, 12);
    mServer.setReply("/pics/logo.png", logo, "image/png");
    mServer.setReply("/pics/photo.jpg", TestPictures::jpeg(30, 20), "image/jpeg");
    start(list("Team",
               option("a", "<Image Cache=\"logo\">" + picture("/pics/logo.png") + "</Image>") +
                   option("b", "<Image>\n  " + picture("/pics/photo.jpg") + "\n</Image>") + option("c", "") +
                   option("d", "<Image>file:/pictures/logo.png</Image>") +
                   option("e", "<Image>map:05_Phone.png</Image>"),
               5));
    json shot = waitFor([](const json& s) {
        return s["screen"]["rows"].size() == 5 && !s["screen"]["rows"][0]["image"].is_null() &&
               !s["screen"]["rows"][1]["image"].is_null();
    });
    EXPECT_EQ(row(shot, 0)["image"]["kind"], "png");
    EXPECT_EQ(row(shot, 0)["image"]["width"], 16);
    EXPECT_EQ(bytesOf(row(shot, 0)["image"]), logo) << "the page gets the bytes the server sent";
    EXPECT_EQ(row(shot, 1)["image"]["kind"], "jpeg");
    EXPECT_EQ(row(shot, 1)["image"]["height"], 20);
    EXPECT_TRUE(row(shot, 2)["image"].is_null());
    EXPECT_EQ(row(shot, 3)["image"]["width"], 20) << "a picture from the phone's files folder";
    EXPECT_EQ(row(shot, 4)["image"]["width"], 24) << "the skin's phone icon";
    EXPECT_EQ(mServer.requestCount("/pics/logo.png"), 1u);

    // A second document naming the cached identifier shows the picture without a download, even
    // though its URL differs.
    mServer.setDocument("/app/chosen",
                        list("Again",
                             option("x", "") + option("y", "<Image Cache=\"logo\">" +
                                                               picture("/pics/elsewhere.png") + "</Image>"),
                             2));
    mPhone->display().pressKey(Key::Ok);
    shot = waitFor([](const json& s) {
        return s["screen"]["title"] == "Again" && s["screen"]["rows"].size() == 2 &&
               !s["screen"]["rows"][1]["image"].is_null();
    });
    EXPECT_EQ(bytesOf(row(shot, 1)["image"]), logo);
    EXPECT_TRUE(row(shot, 0)["image"].is_null());
    EXPECT_EQ(mServer.requestCount("/pics/logo.png"), 1u);
    EXPECT_EQ(mServer.requestCount("/pics/elsewhere.png"), 0u);
}

// Each broken picture is left out; the rows, their texts and the keys keep working.
TEST_F(Pictures, BadPicturesAreLeftOutWithoutHarmToTheScreen) {
    const std::string whole = TestPictures::png(64, 64);
    mServer.setReply("/pics/missing.png", "not here", "text/plain", 404);
    mServer.setReply("/pics/text.png", "<html>a page, not a picture</html>", "image/png");
    mServer.setReply("/pics/truncated.png", whole.substr(0, whole.size() / 2), "image/png");
    // 420 x 420 x 3 bytes is just over 512 KiB.
    mServer.setReply("/pics/large.bmp", TestPictures::bmp(420, 420), "image/bmp");
    mServer.setReply("/pics/claims.png", TestPictures::pngClaiming(30000, 30000), "image/png");
    mServer.setReply("/pics/good.gif", TestPictures::gif(), "image/gif");
    const std::vector<std::string> sources = {picture("/pics/missing.png"),
                                              picture("/pics/text.png"),
                                              picture("/pics/truncated.png"),
                                              picture("/pics/large.bmp"),
                                              picture("/pics/claims.png"),
                                              "http://127.0.0.1:1/refused.png",
                                              "map:99_Nothing.png",
                                              "map:05_NoSuchIcon.png",
                                              "file:/../../../../dev/zero",
                                              "file:zero.png",
                                              "file:pictures",
                                              "file:",
                                              picture("/pics/good.gif")};
    std::string options;
    for (size_t i = 0; i < sources.size(); ++i) {
        options += option("o" + std::to_string(i), "<Image>" + sources[i] + "</Image>");
    }
    start(list("Bad", options, static_cast<int>(sources.size())));
    // Downloads run in order on the queue: once the last picture shows, every other one is done.
    const size_t last = sources.size() - 1;
    json shot = waitFor([last](const json& s) {
        return s["screen"]["rows"].size() == last + 1 && !s["screen"]["rows"][last]["image"].is_null();
    });
    ASSERT_EQ(row(shot, last)["image"]["kind"], "gif") << shot.dump();
    for (size_t i = 0; i < last; ++i) {
        EXPECT_TRUE(row(shot, i)["image"].is_null()) << sources[i];
        EXPECT_EQ(row(shot, i)["columns"][0], "o" + std::to_string(i));
    }
    EXPECT_EQ(mServer.requestCount("/pics/large.bmp"), 1u);
    EXPECT_TRUE(shot["popup"].is_null()) << "no error document for a bad picture";

    mPhone->display().pressKey(Key::Down);
    waitFor([](const json& s) { return s["screen"]["focus"] == 1; });
    const size_t before = mServer.requests().size();
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(before + 1));
    EXPECT_EQ(mServer.requests().back(), "/app/chosen?pick=o1");
}

// Pictures held on screen count against one budget; the one that does not fit brings the error
// document, and the alert shows its own picture.
TEST_F(Pictures, TheBudgetRefusesAndTheErrorDocumentAppears) {
    // 417 x 417 pixels are 522138 bytes as BMP: ten fit in 5 MiB, the eleventh does not.
    std::string options;
    for (int i = 0; i < 11; ++i) {
        const std::string path = "/pics/big" + std::to_string(i) + ".bmp";
        mServer.setReply(path, TestPictures::bmp(417, 417), "image/bmp");
        options += option("b" + std::to_string(i), "<Image>" + picture(path) + "</Image>");
    }
    start(list("Big", options, 11));
    const std::string memory = "The phone ran out of memory for the application";
    const json shot =
        waitFor([&memory](const json& s) { return s.dump().find(memory) != std::string::npos; });
    EXPECT_NE(shot.dump().find("Used memory threshold exceeded"), std::string::npos) << shot.dump();
    EXPECT_EQ(mServer.requestCount("/pics/big10.bmp"), 1u);
}

TEST_F(Pictures, AnAlertShowsItsPicture) {
    mServer.setReply("/pics/warn.png", TestPictures::png(32, 32), "image/png");
    start("<IppDisplay><IppScreen ID=\"1\"><IppAlert Type=\"WARNING\"><Title>Careful</Title><Text>Hot</Text>"
          "<Image>" +
          picture("/pics/warn.png") + "</Image></IppAlert></IppScreen></IppDisplay>");
    const json shot = waitFor([](const json& s) {
        const json& alert = s["popup"].is_object() ? s["popup"] : s["screen"];
        return alert["kind"] == "alert" && !alert["image"].is_null();
    });
    const json& alert = shot["popup"].is_object() ? shot["popup"] : shot["screen"];
    EXPECT_EQ(alert["image"]["width"], 32) << shot.dump();
    EXPECT_EQ(alert["text"], "Hot");
    EXPECT_EQ(mServer.requestCount("/pics/warn.png"), 1u)
        << "the alert's own fetch serves the queued one too";
}

// Form items take pictures from every source; a picture that fails leaves the item's alternative
// text and the rest of the form as it was.
TEST_F(Pictures, FormItemsShowTheirPicturesOrTheirAlternativeText) {
    const std::string photo = TestPictures::png(24, 18);
    mServer.setReply("/pics/photo.png", photo, "image/png");
    mServer.setReply("/pics/ok.jpg", TestPictures::jpeg(12, 12), "image/jpeg");
    mServer.setReply("/pics/tick.png", TestPictures::png(6, 6), "image/png");
    mServer.setReply("/pics/gone.png", "not here", "text/plain", 404);
    start("<IppDisplay><IppScreen ID=\"1\"><IppForm ItemCount=\"6\"><Title>Card</Title>"
          "<IppImageItem><Label>Photo</Label><Image>" +
          picture("/pics/photo.png") +
          "</Image><AltText>[photo]</AltText></IppImageItem>"
          "<IppImageItem><Label>Lost</Label><Image>" +
          picture("/pics/gone.png") +
          "</Image><AltText>[lost]</AltText></IppImageItem>"
          "<IppButton Key=\"b\" Value=\"ok\"><Label>Ok</Label><Image Cache=\"okpic\">" +
          picture("/pics/ok.jpg") +
          "</Image><AltText>[ok]</AltText></IppButton>"
          "<IppButton Key=\"b\" Value=\"file\"><Label>File</Label><Image>file:/pictures/logo.png</Image>"
          "</IppButton>"
          "<IppButton Key=\"b\" Value=\"again\"><Label>Again</Label><Image Cache=\"okpic\">" +
          picture("/pics/ok.jpg") +
          "</Image></IppButton>"
          "<IppChoiceGroup Type=\"MULTIPLE\" Count=\"3\"><Label>Extras</Label>" +
          option("tick", "<Image>" + picture("/pics/tick.png") + "</Image>") +
          option("skin", "<Image>map:05_Phone.png</Image>") + option("none", "") +
          "</IppChoiceGroup></IppForm></IppScreen></IppDisplay>");
    const json shot = waitFor([](const json& s) {
        const json& items = s["screen"]["items"];
        return items.is_array() && items.size() == 6 && !items[0]["image"].is_null() &&
               !items[2]["image"].is_null() && !items[5]["choices"][0]["image"].is_null();
    });
    const json& items = shot["screen"]["items"];
    EXPECT_EQ(items[0]["image"]["width"], 24) << shot.dump();
    EXPECT_EQ(bytesOf(items[0]["image"]), photo);
    EXPECT_TRUE(items[1]["image"].is_null()) << "a 404 leaves no picture";
    EXPECT_EQ(items[1]["altText"], "[lost]");
    EXPECT_EQ(items[1]["label"], "Lost");
    EXPECT_EQ(items[2]["image"]["kind"], "jpeg");
    EXPECT_EQ(items[3]["image"]["width"], 20) << "a phone file";
    EXPECT_EQ(items[4]["image"]["kind"], "jpeg") << "taken from the cache";
    EXPECT_EQ(mServer.requestCount("/pics/ok.jpg"), 1u) << "the second button shares the cached picture";
    EXPECT_EQ(items[5]["choices"][0]["image"]["width"], 6) << "a download that arrives after the form";
    EXPECT_FALSE(items[5]["choices"][1]["image"].is_null()) << "a skin picture";
    EXPECT_TRUE(items[5]["choices"][2]["image"].is_null());
    EXPECT_EQ(items[5]["choices"][2]["text"], "none");
    EXPECT_EQ(mServer.requestCount("/pics/photo.png"), 1u) << "the item's own fetch serves the queued one";
}

// Keys on one thread while new lists replace ones whose pictures are still downloading: elements
// deleted under a pending download must be skipped, not used.
TEST_F(Pictures, KeysWhileNewListsReplaceListsStillDownloadingPictures) {
    mServer.setReply("/pics/a.png", TestPictures::png(8, 8), "image/png");
    mServer.setReply("/pics/b.jpg", TestPictures::jpeg(9, 9), "image/jpeg");
    std::string options;
    for (int i = 0; i < 12; ++i) {
        const std::string source =
            i % 3 == 0 ? "<Image Cache=\"shared\">" + picture("/pics/a.png") + "</Image>"
                       : "<Image>" + picture(i % 2 ? "/pics/a.png" : "/pics/b.jpg") + "</Image>";
        options += option("s" + std::to_string(i), source);
    }
    const std::string document = list("Stress", options, 12);
    mServer.setDocument("/app/chosen", document);
    start(document);
    std::atomic<bool> done{false};
    std::thread keys([&] {
        for (int i = 0; !done; ++i) {
            mPhone->display().pressKey(i % 2 ? Key::Up : Key::Down);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    for (int round = 0; round < 15; ++round) {
        const size_t before = mServer.requestCount("/app/chosen");
        mPhone->display().pressKey(Key::Ok);
        for (int i = 0; i < 200 && mServer.requestCount("/app/chosen") == before; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    done = true;
    keys.join();
    const json shot = waitFor([](const json& s) {
        const json& rows = s["screen"]["rows"];
        return rows.size() == 12 &&
               std::all_of(rows.begin(), rows.end(), [](const json& row) { return !row["image"].is_null(); });
    });
    EXPECT_EQ(shot["screen"]["title"], "Stress");
    EXPECT_EQ(shot["screen"]["rows"].size(), 12u) << shot.dump();
    EXPECT_TRUE(shot["popup"].is_null()) << shot.dump();
}

// The same race on a form: buttons pressed while the form that holds them, with pictures of its
// buttons and entries still downloading, is replaced by the next one.
TEST_F(Pictures, KeysWhileNewFormsReplaceFormsStillDownloadingPictures) {
    mServer.setReply("/pics/a.png", TestPictures::png(8, 8), "image/png");
    mServer.setReply("/pics/b.jpg", TestPictures::jpeg(9, 9), "image/jpeg");
    std::string buttons;
    std::string entries;
    for (int i = 0; i < 6; ++i) {
        const std::string source = "<Image>" + picture(i % 2 ? "/pics/a.png" : "/pics/b.jpg") + "</Image>";
        buttons += "<IppButton Key=\"b\" Value=\"" + std::to_string(i) + "\"><Label>B</Label>" + source +
                   "<AltText>[b]</AltText></IppButton>";
        entries += option("e" + std::to_string(i), source);
    }
    const std::string document =
        "<IppDisplay><IppScreen ID=\"1\"><IppForm ItemCount=\"7\"><Title>Busy</Title>"
        "<Url>" +
        picture("/app/chosen") + "</Url>" + buttons +
        "<IppChoiceGroup Type=\"MULTIPLE\" Count=\"6\"><Label>E</Label>" + entries +
        "</IppChoiceGroup></IppForm></IppScreen></IppDisplay>";
    mServer.setDocument("/app/chosen", document);
    start(document);
    std::atomic<bool> done{false};
    std::thread keys([&] {
        for (int i = 0; !done; ++i) {
            mPhone->display().pressKey(i % 3 == 0 ? Key::Down : i % 3 == 1 ? Key::Up : Key::Ok);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    for (int round = 0; round < 15; ++round) {
        const size_t before = mServer.requestCount("/app/chosen");
        mPhone->display().pressKey(Key::Ok);
        for (int i = 0; i < 200 && mServer.requestCount("/app/chosen") == before; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    done = true;
    keys.join();
    EXPECT_GT(mServer.requestCount("/app/chosen"), 0u) << "the buttons sent the form";
    const json shot = waitFor([](const json& s) {
        const json& items = s["screen"]["items"];
        if (!items.is_array() || items.size() != 7) {
            return false;
        }
        const json& choices = items[6]["choices"];
        return std::all_of(items.begin(), items.begin() + 6,
                           [](const json& b) { return !b["image"].is_null(); }) &&
               std::all_of(choices.begin(), choices.end(),
                           [](const json& c) { return !c["image"].is_null(); });
    });
    EXPECT_EQ(shot["screen"]["title"], "Busy") << shot.dump();
    EXPECT_TRUE(shot["popup"].is_null()) << shot.dump();
}

} // namespace
