# A game with a subprogram, edited: problems as it is opened and changed, what is offered, told, found and renamed.
> {"id":1,"method":"initialize","params":{"capabilities":{}}}
< {"jsonrpc":"2.0","id":1,"result":{"capabilities":{"positionEncoding":"utf-16","textDocumentSync":1,"hoverProvider":true}}}
> {"method":"initialized","params":{}}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///g/SUB.txt","text":"A\u2192B\nReturn\n"}}}
< {"method":"textDocument/publishDiagnostics","params":{"uri":"file:///g/SUB.txt","diagnostics":[]}}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///g/MAIN.txt","text":"\"\ud83d\ude00\"\nLbl 1\nProg \"SUB\"\nGoto 2\n"}}}
< {"method":"textDocument/publishDiagnostics","params":{"uri":"file:///g/MAIN.txt","diagnostics":[{"code":"no-token","severity":1,"range":{"start":{"line":0,"character":1},"end":{"line":0,"character":3}}},{"code":"label-missing","range":{"start":{"line":3,"character":5},"end":{"line":3,"character":6}},"message":"There is no Lbl 2 in this program: the jump ends in Go ERROR."}]}}
> {"method":"textDocument/didChange","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"contentChanges":[{"text":"Lbl 1\r\nProg \"SUB\"\r\nA>1=>Goto 1\r\nLoca\r\n"}]}}
< {"method":"textDocument/publishDiagnostics","params":{"uri":"file:///g/MAIN.txt","diagnostics":[]}}
> {"id":2,"method":"textDocument/completion","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":3,"character":4}}}
< {"id":2,"result":{"items":[{"label":"Locate","detail":"Locate COLUMN,ROW,VALUE or \"TEXT\"","textEdit":{"newText":"Locate ","range":{"start":{"line":3,"character":0},"end":{"line":3,"character":4}}}}]}}
> {"id":3,"method":"textDocument/hover","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":2,"character":6}}}
< {"id":3,"result":{"contents":{"kind":"markdown"},"range":{"start":{"line":2,"character":5},"end":{"line":2,"character":10}}}}
> {"id":4,"method":"textDocument/documentSymbol","params":{"textDocument":{"uri":"file:///g/MAIN.txt"}}}
< {"id":4,"result":[{"name":"Lbl 1","range":{"start":{"line":0,"character":0}}},{"name":"Prog SUB","range":{"start":{"line":1}}}]}
> {"id":5,"method":"textDocument/definition","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":2,"character":10}}}
< {"id":5,"result":{"uri":"file:///g/MAIN.txt","range":{"start":{"line":0,"character":4},"end":{"line":0,"character":5}}}}
> {"id":6,"method":"textDocument/definition","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":1,"character":7}}}
< {"id":6,"result":{"uri":"file:///g/SUB.txt"}}
> {"id":7,"method":"textDocument/references","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":0,"character":4},"context":{"includeDeclaration":true}}}
< {"id":7,"result":[{"range":{"start":{"line":0,"character":4}}},{"range":{"start":{"line":2,"character":10}}}]}
> {"id":17,"method":"textDocument/references","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":0,"character":4},"context":{"includeDeclaration":false}}}
< {"id":17,"result":[{"range":{"start":{"line":2,"character":10}}}]}
> {"id":8,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":0,"character":4},"newName":"A"}}
< {"id":8,"result":{"changes":{"file:///g/MAIN.txt":[{"newText":"A","range":{"start":{"line":0,"character":4}}},{"newText":"A"}]}}}
> {"id":9,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"position":{"line":0,"character":4},"newName":"AB"}}
< {"id":9,"error":{"code":-32803}}
> {"id":10,"method":"textDocument/formatting","params":{"textDocument":{"uri":"file:///g/MAIN.txt"},"options":{"tabSize":2,"insertSpaces":true}}}
< {"id":10,"result":[{"range":{"start":{"line":2,"character":0},"end":{"line":2,"character":11}},"newText":"A>1\u21d2Goto 1"}]}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///g/A%20B.txt","text":"Prog \"SUB\"\nProg \"A B\""}}}
< {"method":"textDocument/publishDiagnostics","params":{"uri":"file:///g/A%20B.txt","diagnostics":[]}}
> {"id":12,"method":"textDocument/definition","params":{"textDocument":{"uri":"file:///g/A%20B.txt"},"position":{"line":1,"character":7}}}
< {"id":12,"result":{"uri":"file:///g/A%20B.txt"}}
> {"id":11,"method":"shutdown"}
< {"id":11,"result":null}
> {"method":"exit"}
