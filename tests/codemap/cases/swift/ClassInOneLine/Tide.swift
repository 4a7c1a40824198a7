class Tide {}
