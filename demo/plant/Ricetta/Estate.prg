[File]
ID = Telvane


[Note]
< Passaggio alla stagione estiva: set point portati a 26 °C, soglie di allarme alzate >


[Zona 01]
Intervallo = 150
Linee = 3
01 = 0,MSGBOX,Chiudere le valvole manuali dei radiatori prima di proseguire.;Avviso operatore
02 = 6,2,260;Set point
03 = 6,3,320;Soglia allarme 1


[Zona 02]
Intervallo = 150
Linee = 2
01 = 6,2,260;Set point
02 = 6,3,320;Soglia allarme 1


[Zona 03]
Intervallo = 150
Linee = 3
01 = 6,2,260;Set point
02 = 0,SLEEP,1000;Attesa strumento
03 = 6,3,300;Soglia allarme 1


[Zona 04]
Intervallo = 150
Linee = 2
01 = 6,2,260;Set point
02 = 6,3,300;Soglia allarme 1


[Zona 05]
Linee = 2
01 = 6,2,240;Set point
02 = 5,1,0;Comando remoto


[Zona 06]
Intervallo = 150
Linee = 2
01 = 6,2,260;Set point
02 = 6,3,320;Soglia allarme 1
