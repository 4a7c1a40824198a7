void Outer::Inner::run() {}
void sea::Outer::Inner::rise() const {}
