// The service registry: one instance of each phonelet service, created on first use.
#pragma once

class AGPPhonelet;
class Translator;
class AGPObjectMap;
class AGPGUIHandler;
class AGPMessageQueueHandler;
class AGPDataObserver;
class AGPServerConnection;
class AGPXMLParser;
class AGPPhonebookHandler;
class AGPCallHandler;
class AGPAudioHandler;
class AGPImageCache;
class AGPKeysHandler;
class AGPRemoteTraceHandler;

class AGPPhoneletManager {
public:
    static AGPPhonelet* getAGPPhonelet() { return mpAgpPhonelet; }
    static void setAGPPhonelet(AGPPhonelet* phonelet) { mpAgpPhonelet = phonelet; }

    // Each getter creates its service on first use. Creation is not locked: every service is
    // first asked for on the host's thread during start-up, before any queue thread exists.
    static AGPObjectMap* getAGPObjectMap();
    static AGPGUIHandler* getAGPGUIHandler();
    static AGPMessageQueueHandler* getAGPMessageQueueHandler();
    static AGPDataObserver* getAGPDataObserver();
    static AGPServerConnection* getAGPServerConnection();
    static AGPXMLParser* getAGPXMLParser();
    static AGPPhonebookHandler* getAGPPhonebookHandler();
    static AGPCallHandler* getAGPCallHandler();
    static AGPAudioHandler* getAGPAudioHandler();
    static AGPImageCache* getAGPImageCache();
    static AGPKeysHandler* getAGPKeysHandler();
    static AGPRemoteTraceHandler* getAGPRemoteTraceHandler();

    // The service if it exists, without creating it: for the checks that a service is there.
    static AGPObjectMap* findAGPObjectMap() { return mpAgpObjectMap; }
    static AGPGUIHandler* findAGPGUIHandler() { return mpAgpGUIHandler; }
    static AGPMessageQueueHandler* findAGPMessageQueueHandler() { return mpAgpMessageQueueHandler; }
    static AGPDataObserver* findAGPDataObserver() { return mpAgpDataObserver; }
    static AGPServerConnection* findAGPServerConnection() { return mpAgpServerConnection; }
    static AGPXMLParser* findAGPXMLParser() { return mpAgpXMLParser; }
    static AGPPhonebookHandler* findAGPPhonebookHandler() { return mpAgpPhonebookHandler; }
    static AGPCallHandler* findAGPCallHandler() { return mpAgpCallHandler; }
    static AGPAudioHandler* findAGPAudioHandler() { return mpAgpAudioHandler; }
    static AGPImageCache* findAGPImageCache() { return mpAgpImageCache; }
    static AGPKeysHandler* findAGPKeysHandler() { return mpAgpKeysHandler; }
    static AGPRemoteTraceHandler* findAGPRemoteTraceHandler() { return mpAgpRemoteTraceHandler; }

    // The phonelet's translator; null without a phonelet (labels then show in English).
    static const Translator* getTranslator();

    // The phonelet's flags, false while no phonelet is registered.
    static bool isPhoneletShuttingDown();
    static bool isErrorDocumentShown();

    // Deletes the services that exist, in the order that lets each one still reach those it
    // uses; then the value pool; last the object registry.
    static void shutdownPhonelet();

private:
    static AGPPhonelet* mpAgpPhonelet;
    static AGPObjectMap* mpAgpObjectMap;
    static AGPGUIHandler* mpAgpGUIHandler;
    static AGPMessageQueueHandler* mpAgpMessageQueueHandler;
    static AGPDataObserver* mpAgpDataObserver;
    static AGPServerConnection* mpAgpServerConnection;
    static AGPXMLParser* mpAgpXMLParser;
    static AGPPhonebookHandler* mpAgpPhonebookHandler;
    static AGPCallHandler* mpAgpCallHandler;
    static AGPAudioHandler* mpAgpAudioHandler;
    static AGPImageCache* mpAgpImageCache;
    static AGPKeysHandler* mpAgpKeysHandler;
    static AGPRemoteTraceHandler* mpAgpRemoteTraceHandler;
};
