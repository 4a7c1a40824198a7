void run() {
    namespace fs = std::filesystem;
    using namespace std;
}
int after;
