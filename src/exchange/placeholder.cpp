namespace numalink {}
