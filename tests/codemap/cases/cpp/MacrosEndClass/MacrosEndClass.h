class Event {
public:
    Event();

    EVENT_METHODS_DECLARATION
    DROP_METHODS_DECLARATION
    MOVE_METHODS_DECLARATION
};

class Other {
    EVENT_METHODS
    int field;
};

class Flags {
    BOOL FLAG;
};

struct GUID {
    GUID(const GUID &) = default;
    GUID &operator=(const GUID &) = delete;
};
