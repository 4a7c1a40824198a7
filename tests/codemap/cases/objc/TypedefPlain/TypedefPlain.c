typedef unsigned long size_type;
