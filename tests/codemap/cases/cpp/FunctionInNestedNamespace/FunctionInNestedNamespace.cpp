namespace a { namespace b { void run() {} } }
