struct Event
#define EVENT_TAG 1
{
#define EVENT_KIND 2
    int kind;
    int a,
#define EVENT_B 3
        b;
};
