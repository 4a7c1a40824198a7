class Window : public QObject {
    Q_OBJECT
public:
    explicit Window(QObject *parent = nullptr) : QObject(parent) {}
    Q_INVOKABLE void run();
};
