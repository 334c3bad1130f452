include(Driver)
