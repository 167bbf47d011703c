// The service registry: one instance of each phonelet service, created on first use.
#pragma once

class AGPObjectMap;
class AGPPhonelet;
class AGPXMLParser;

class AGPPhoneletManager {
public:
    static AGPPhonelet* getAGPPhonelet() { return mpAgpPhonelet; }
    static void setAGPPhonelet(AGPPhonelet* phonelet) { mpAgpPhonelet = phonelet; }

    static AGPObjectMap* getAGPObjectMap();
    static AGPXMLParser* getAGPXMLParser();

    // Deletes the services that exist, then the value pool, then the object registry.
    static void shutdownPhonelet();

private:
    static AGPPhonelet* mpAgpPhonelet;
    static AGPObjectMap* mpAgpObjectMap;
    static AGPXMLParser* mpAgpXMLParser;
};
