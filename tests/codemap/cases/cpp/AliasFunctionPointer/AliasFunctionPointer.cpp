using Callback = void (*)(int, char);
using Member = int (Sea::*)() const;
