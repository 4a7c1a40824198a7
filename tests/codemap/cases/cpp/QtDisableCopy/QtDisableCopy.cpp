class Window {
    Q_DISABLE_COPY(Window)
public:
    int a;
};
Q_DECLARE_METATYPE(Window)
int after;
