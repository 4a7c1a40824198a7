class A : public QObject {
    Q_OBJECT
public slots:
    void rise();
signals:
    void changed(int a);
private Q_SLOTS:
    void ebb();
};
