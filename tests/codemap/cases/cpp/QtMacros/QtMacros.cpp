class Window : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int width READ width WRITE setWidth)
public:
    Window();
signals:
    void closed(int code);
public slots:
    void open();
private Q_SLOTS:
    void hide();
Q_SIGNALS:
    void shown();
private:
    int width_;
};
