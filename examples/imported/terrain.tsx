<?xml version="1.0" encoding="UTF-8"?>
<tileset version="1.8" tiledversion="1.8.2" name="terrain" tilewidth="16" tileheight="16" tilecount="8" columns="4">
 <image source="terrain.png" width="64" height="32"/>
 <tile id="4">
  <animation>
   <frame tileid="4" duration="400"/>
   <frame tileid="5" duration="400"/>
  </animation>
 </tile>
</tileset>
