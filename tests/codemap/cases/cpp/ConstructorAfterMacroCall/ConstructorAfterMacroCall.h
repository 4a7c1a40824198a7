class Document : public Object
{
    Q_OBJECT
    Q_DISABLE_COPY(Document)
    explicit Document(DocumentData &data);

    DocumentData *m_data;
};
class Page {
    Q_OBJECT
    Q_DISABLE_COPY(Page)
    Page(int);
};
class Link {
    Q_DISABLE_COPY(Link)
    explicit Link() {}
    Q_DECLARE_PRIVATE(Link)
    virtual ~Link();
};
