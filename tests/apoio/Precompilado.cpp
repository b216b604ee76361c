// Nothing of its own: the headers that the tests share are compiled along with it.
