[File]
ID = Telvane


[Note]
< Passaggio alla stagione invernale: set point di comfort 20 °C >


[Zona 01]
Intervallo = 150
Linee = 2
01 = 6,2,200;Set point
02 = 6,3,260;Soglia allarme 1


[Zona 02]
Intervallo = 150
Linee = 2
01 = 6,2,200;Set point
02 = 6,3,260;Soglia allarme 1


[Zona 03]
Intervallo = 150
Linee = 3
01 = 6,2,180;Set point
02 = 0,SLEEP,1000;Attesa strumento
03 = 6,3,240;Soglia allarme 1


[Zona 04]
Intervallo = 150
Linee = 2
01 = 6,2,180;Set point
02 = 6,3,240;Soglia allarme 1


[Zona 05]
Linee = 2
01 = 6,2,220;Set point
02 = 5,1,1;Comando remoto


[Zona 06]
Intervallo = 150
Linee = 2
01 = 6,2,200;Set point
02 = 6,3,260;Soglia allarme 1
