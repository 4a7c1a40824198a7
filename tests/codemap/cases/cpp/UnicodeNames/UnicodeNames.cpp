struct Größe { int höhe; };
void étale() {}
